#pragma once
#include "base/Instant.h"
#include "google/AccountRegistry.h"
#include "google/GoogleProvider.h"
#include "meet/MeetState.h"
#include "model/EventStore.h"
#include "preferences/Preferences.h"
#include <QCoro/QCoroTask>
#include <QObject>
#include <QString>
#include <QTimer>
#include <optional>

namespace kestrel {

class PreferenceStore;

/// The root of the running application: owns its long-lived objects, and keeps the meetings in step with the
/// registered accounts, every minute, at the start, when the accounts change, and when a locked secret store
/// opens. The only writer of the event store. Tasks under way when it goes end without a trace. Main thread
/// only.
class AppEnvironment final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isRefreshing READ isRefreshing NOTIFY isRefreshingChanged)
    Q_PROPERTY(std::optional<kestrel::Instant> lastRefresh READ lastRefresh NOTIFY lastRefreshChanged)
public:
    static constexpr std::chrono::seconds autoRefreshInterval { 60 };

    /// What it is given outlives it and the tasks that it started.
    AppEnvironment(PreferenceStore &preferenceStore, const AuthServices &services, QObject *parent = nullptr);
    ~AppEnvironment() override;

    [[nodiscard]] const Clock &clock() const { return m_clock; }
    [[nodiscard]] Preferences &preferences() { return m_preferences; }
    [[nodiscard]] EventStore &store() { return m_store; }
    [[nodiscard]] AccountRegistry &registry() { return m_registry; }
    [[nodiscard]] GoogleProvider &google() { return m_google; }
    [[nodiscard]] MeetState &meetState() { return m_meetState; }

    /// Of refreshes that overlap, the first to finish sets it to false.
    [[nodiscard]] bool isRefreshing() const { return m_isRefreshing; }
    /// When the last refresh finished; one that a newer one took the place of does not count.
    [[nodiscard]] std::optional<Instant> lastRefresh() const { return m_lastRefresh; }

    /// Fetches every account's meetings of the coming day. Does not mind another refresh that is under way.
    [[nodiscard]] QCoro::Task<void> refresh();

Q_SIGNALS:
    void isRefreshingChanged();
    void lastRefreshChanged();

private:
    enum class FetchOutcome { Stored, Superseded };

    [[nodiscard]] QCoro::Task<FetchOutcome> refreshAccount(QString accountID, Instant from, Instant to);
    void startRefresh();
    void followAccounts();
    void setRefreshing(bool isRefreshing);
    void setLastRefresh(Instant instant);

    const Clock &m_clock;
    Preferences m_preferences;
    EventStore m_store;
    AccountRegistry m_registry;
    GoogleProvider m_google;
    // between these two: what presents alerts, then what schedules them; they use all of the above
    MeetState m_meetState;
    bool m_isRefreshing = false;
    std::optional<Instant> m_lastRefresh;
    QTimer m_fetchTimer { this };
};

} // namespace kestrel
