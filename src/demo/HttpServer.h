#pragma once
#include "demo/Answer.h"
#include "demo/ReceivedRequest.h"
#include <QObject>
#include <QSslConfiguration>
#include <QTcpServer>
#include <expected>
#include <functional>
#include <memory>

namespace kestrel::demo {

/// A small HTTP/1.1 server on 127.0.0.1: keep-alive, bodies with a Content-Length, bounded requests, one
/// answer at a time on each connection. There is no idle time-out: its clients are this machine's own tests
/// and demo. Owns its connections; lives in the thread of its event loop.
class HttpServer final : public QObject
{
    Q_OBJECT
public:
    using Handler = std::function<Answer(const ReceivedRequest &)>;

    explicit HttpServer(Handler handler, QObject *parent = nullptr);
    /// The same over TLS, with the certificate and key of `tls`.
    HttpServer(Handler handler, const QSslConfiguration &tls, QObject *parent = nullptr);

    /// 0 takes any free port. The error is the system's.
    [[nodiscard]] std::expected<void, QString> listen(quint16 port);
    [[nodiscard]] quint16 port() const { return m_listener->serverPort(); }

private:
    HttpServer(Handler handler, std::unique_ptr<QTcpServer> listener, QObject *parent);
    void accept();

    Handler m_handler;
    std::unique_ptr<QTcpServer> m_listener;
    qint64 m_connectionCount = 0;
};

} // namespace kestrel::demo
