#pragma once
#include "demo/HttpServer.h"
#include <QJsonArray>

namespace kestrel::demo {

/// Plays the page of a call for a browser that takes 127.0.0.1 for the meeting's host: buttons with the
/// labels that such a page has, in English or Spanish, behind a content security policy as strict as a real
/// one's. Every address is a call; what call.js says of its query items chooses how it is. GET /-/clicks
/// tells, as a JSON array, the labels of the buttons that were pressed, in order, as they were before; with
/// ?times instead when, in milliseconds since 1970; DELETE
/// /-/clicks forgets them. Lives in the thread of its event loop.
class SampleCall final
{
public:
    explicit SampleCall(const QSslConfiguration &tls);

    /// On 127.0.0.1; 0 takes any free port.
    [[nodiscard]] std::expected<void, QString> listen(quint16 port) { return m_server.listen(port); }
    [[nodiscard]] quint16 port() const { return m_server.port(); }

    /// With a certificate of its own that no browser trusts, made by openssl and gone with the process.
    [[nodiscard]] static std::expected<QSslConfiguration, QString> selfSigned(const QString &host);

private:
    [[nodiscard]] Answer answer(const ReceivedRequest &request);

    QJsonArray m_clicks;
    QJsonArray m_times;
    HttpServer m_server;
};

} // namespace kestrel::demo
