#pragma once
#include "platform/HttpTransport.h"
#include <QPromise>
#include <map>
#include <memory>
#include <tuple>

class QNetworkAccessManager;

namespace kestrel {

class Connectivity;

/// HTTP on QNetworkAccessManager, one for all accounts: with neither cookies nor a cache nor stored
/// credentials, all that they share is connections, and those are given up after a request that timed out and
/// when a network comes back. When it goes, what is under way or waits ends with a network error; callers
/// resume from the event loop, not from inside the destructor.
class QtHttpTransport final : public HttpTransport
{
    Q_OBJECT
public:
    explicit QtHttpTransport(Connectivity &connectivity, QObject *parent = nullptr);
    ~QtHttpTransport() override;

    [[nodiscard]] bool isOnline() const override;
    [[nodiscard]] QCoro::Task<std::expected<HttpResponse, TransportError>> send(HttpRequest request) override;
    [[nodiscard]] QCoro::Task<std::expected<void, TransportError>> waitForNetwork(QString account,
                                                                                  QUrl address) override;

private:
    using WaitKey = std::tuple<QString, QString, QString>; ///< account, host, path
    using WaitOutcome = std::expected<void, TransportError>;

    void giveUpConnections();
    void followConnectivity();
    void endAllWaits(const WaitOutcome &outcome);

    Connectivity &m_connectivity;
    std::shared_ptr<QNetworkAccessManager> m_network; ///< shared with what is under way on it
    std::map<WaitKey, QPromise<WaitOutcome>> m_waiting;
};

} // namespace kestrel
