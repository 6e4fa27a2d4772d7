#pragma once
#include "alerts/AlertPresenter.h"
#include "alerts/AlertScheduler.h"
#include "app/DesktopServices.h"
#include "base/Instant.h"
#include "google/AccountRegistry.h"
#include "google/GoogleProvider.h"
#include "meet/MeetState.h"
#include "menubar/MeetingOpener.h"
#include "menubar/RefreshControl.h"
#include "model/EventStore.h"
#include "preferences/Preferences.h"
#include <QCoro/QCoroTask>
#include <QString>
#include <QTimer>
#include <optional>

namespace kestrel {

class PreferenceStore;

/// The root of the running application: owns its long-lived objects, and keeps the meetings in step with the
/// registered accounts, every minute, at the start, when the accounts change, and when a locked secret store
/// opens. The only writer of the event store. Tasks under way when it goes end without a trace. Main thread
/// only.
class AppEnvironment final : public RefreshControl
{
    Q_OBJECT
public:
    static constexpr std::chrono::seconds autoRefreshInterval { 60 };

    /// What it is given outlives it and the tasks that it started.
    AppEnvironment(PreferenceStore &preferenceStore, const AuthServices &services,
                   const DesktopServices &desktop, QObject *parent = nullptr);
    ~AppEnvironment() override;

    [[nodiscard]] const Clock &clock() const { return m_clock; }
    [[nodiscard]] Preferences &preferences() { return m_preferences; }
    [[nodiscard]] EventStore &store() { return m_store; }
    [[nodiscard]] AccountRegistry &registry() { return m_registry; }
    [[nodiscard]] GoogleProvider &google() { return m_google; }
    [[nodiscard]] MeetingOpener &opener() { return m_opener; }
    [[nodiscard]] AlertPresenter &presenter() { return m_presenter; }
    [[nodiscard]] const AlertScheduler &scheduler() const { return m_scheduler; }
    [[nodiscard]] MeetState &meetState() { return m_meetState; }

    /// Of refreshes that overlap, the first to finish sets it to false.
    [[nodiscard]] bool isRefreshing() const override { return m_isRefreshing; }
    /// When the last refresh finished; one that a newer one took the place of does not count.
    [[nodiscard]] std::optional<Instant> lastRefresh() const override { return m_lastRefresh; }

    /// Fetches every account's meetings of the coming day. Does not mind another refresh that is under way.
    [[nodiscard]] QCoro::Task<void> refresh();
    void startRefresh() override;
    [[nodiscard]] QStringList signedOutAccounts() const override { return m_signedOut; }

private:
    enum class FetchOutcome { Stored, Superseded };

    [[nodiscard]] QCoro::Task<FetchOutcome> refreshAccount(QString accountID, Instant from, Instant to);
    void followAccounts();
    void followSignIns();
    void setRefreshing(bool isRefreshing);
    void setLastRefresh(Instant instant);

    const Clock &m_clock;
    Preferences m_preferences;
    EventStore m_store;
    AccountRegistry m_registry;
    GoogleProvider m_google;
    MeetingOpener m_opener;
    AlertPresenter m_presenter;
    AlertScheduler m_scheduler;
    MeetState m_meetState;
    bool m_isRefreshing = false;
    std::optional<Instant> m_lastRefresh;
    QStringList m_signedOut;
    QTimer m_fetchTimer { this };
};

} // namespace kestrel
