#pragma once
#include "base/Clock.h"
#include "demo/FaultPlan.h"
#include "demo/GeneratedLoad.h"
#include "demo/Grants.h"
#include "demo/HttpServer.h"
#include <QUrl>
#include <deque>

namespace kestrel::demo {

/// Plays Google for the demo, the tests and the benchmarks: sign-in pages, token endpoint and calendar API at
/// one loopback base, and beside them a few addresses that control it (docs/sample-google.md). The clock
/// outlives it. Lives in the thread of its event loop.
class SampleGoogle final : public QObject
{
    Q_OBJECT
public:
    struct Options
    {
        /// The sample events stand around this instant.
        Instant anchor {};
        /// Takes the place of the sample accounts.
        std::optional<LoadSize> load {};
        std::chrono::seconds accessTokenLifetime { 3599 };
        /// Refresh tokens "sample-refresh-0", -1 … are good from the start, one for each account.
        bool acceptsSampleTokens = false;
    };

    /// The whole minute in which `now` lies: where the events stand unless somebody wants it otherwise.
    [[nodiscard]] static Instant anchorFor(Instant now);

    SampleGoogle(const Options &options, const Clock &clock, QObject *parent = nullptr);

    /// On 127.0.0.1; 0 takes any free port.
    [[nodiscard]] std::expected<void, QString> listen(quint16 port = 0) { return m_server.listen(port); }
    [[nodiscard]] QUrl base() const;

    void addFault(Fault fault) { m_faults.add(std::move(fault)); }

private:
    /// What GET /requests tells of a request. Never values, since these may be tokens.
    struct LoggedRequest
    {
        QString method;
        QString path;
        QStringList queryNames;
        bool hasAuthorization;
        bool hasCookie;
        qint64 connection;
        int status; ///< 0: the connection was closed without an answer
    };

    [[nodiscard]] Answer answer(const ReceivedRequest &request);
    [[nodiscard]] Answer play(const ReceivedRequest &request, const QString &path);
    [[nodiscard]] std::optional<Answer> control(const ReceivedRequest &request, const QString &path);

    [[nodiscard]] Answer authorize(const QUrlQuery &query);
    [[nodiscard]] Answer consent(const QUrlQuery &form);
    [[nodiscard]] Answer token(const QUrlQuery &form);
    [[nodiscard]] Answer revoke(const ReceivedRequest &request);
    [[nodiscard]] Answer userInfo(const ReceivedRequest &request);
    [[nodiscard]] Answer calendarApi(const ReceivedRequest &request);

    [[nodiscard]] Answer changeFaults(const ReceivedRequest &request);
    [[nodiscard]] Answer changeEvents(const ReceivedRequest &request);
    [[nodiscard]] Answer requestLog() const;

    [[nodiscard]] std::optional<Authorization> bearer(const ReceivedRequest &request) const;
    [[nodiscard]] SampleAccount *account(const QString &email);

    const Clock &m_clock;
    std::vector<SampleAccount> m_accounts;
    Grants m_grants;
    FaultPlan m_faults;
    struct PendingConsent
    {
        QString id;
        Authorization authorization;
        QString state;
    };
    std::deque<PendingConsent> m_pendingConsents; ///< pages that were served and not answered, oldest first
    std::deque<LoggedRequest> m_log;
    qint64 m_requestCount = 0;
    int m_revision = 0; ///< of the events
    HttpServer m_server;
};

} // namespace kestrel::demo
