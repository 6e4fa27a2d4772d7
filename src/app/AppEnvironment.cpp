#include "app/AppEnvironment.h"
#include "base/Clock.h"
#include "base/Log.h"
#include "base/StartTask.h"
#include "platform/SecretStore.h"
#include <QPointer>
#include <QSet>
#include <utility>
#include <vector>

using namespace std::chrono_literals;

namespace kestrel {

AppEnvironment::AppEnvironment(PreferenceStore &preferenceStore, const AuthServices &services,
                               const DesktopServices &desktop, QObject *parent)
    : RefreshControl(parent)
    , m_clock(services.clock)
    , m_preferences(preferenceStore)
    , m_store(services.clock)
    , m_registry(preferenceStore)
    , m_google(m_registry, services)
    , m_opener(m_registry, m_preferences, services.opener, desktop.applications, desktop.helper,
               desktop.screens)
    , m_presenter(m_preferences, m_opener, m_clock, desktop.scene, desktop.windows, desktop.screens,
                  desktop.sounds, desktop.notifications, desktop.theme)
    , m_scheduler(m_store, m_presenter, m_preferences, m_clock, desktop.alertTimer)
{
    m_preferences.applyLanguageOverride();

    // the list of accounts is handed on once as it stands, and then whenever it changes
    connect(&m_registry, &AccountRegistry::accountsChanged, this, &AppEnvironment::followAccounts,
            Qt::QueuedConnection);
    QMetaObject::invokeMethod(this, &AppEnvironment::followAccounts, Qt::QueuedConnection);

    // queued: an account that is signed out on purpose is gone by then
    connect(&m_google, &GoogleProvider::signedInChanged, this, &AppEnvironment::followSignIns,
            Qt::QueuedConnection);
    connect(&m_google, &GoogleProvider::signedInAgain, this, &AppEnvironment::startRefresh);
    connect(&services.secrets, &SecretStore::opened, this, &AppEnvironment::startRefresh);

    // coarse to the second, so that it can share its wake-ups; the 5 % of the default would be three seconds
    m_fetchTimer.setTimerType(Qt::VeryCoarseTimer);
    m_fetchTimer.setInterval(autoRefreshInterval);
    connect(&m_fetchTimer, &QTimer::timeout, this, &AppEnvironment::startRefresh);
    m_fetchTimer.start();
    QMetaObject::invokeMethod(this, &AppEnvironment::startRefresh, Qt::QueuedConnection);
}

AppEnvironment::~AppEnvironment() = default;

QCoro::Task<void> AppEnvironment::refresh()
{
    if (m_registry.accounts().isEmpty()) {
        m_store.clear();
        setLastRefresh(m_clock.now());
        co_return;
    }

    const QPointer self(this);
    setRefreshing(true);
    const Instant now = m_clock.now();
    std::vector<QCoro::Task<FetchOutcome>> fetches; // tasks start when they are made: these run side by side
    for (const CalendarAccount &account : m_registry.accounts(GoogleProvider::providerID))
        fetches.push_back(refreshAccount(account.id, now - 1h, now + 24h));
    bool isSuperseded = false;
    for (auto &fetch : fetches) {
        if (co_await fetch == FetchOutcome::Superseded)
            isSuperseded = true;
    }

    if (!self)
        co_return;
    setRefreshing(false);
    if (!isSuperseded)
        setLastRefresh(m_clock.now());
}

QCoro::Task<AppEnvironment::FetchOutcome> AppEnvironment::refreshAccount(QString accountID, Instant from,
                                                                         Instant to)
{
    const QPointer self(this);
    const auto meetings = co_await m_google.fetchUpcomingMeetings(
        accountID, m_preferences.selectedCalendarIDs(accountID), from, to);
    if (!self)
        co_return FetchOutcome::Stored;
    if (meetings) {
        m_store.replace(accountID, *meetings);
        co_return FetchOutcome::Stored;
    }
    if (meetings.error().kind == FetchError::Kind::Superseded)
        co_return FetchOutcome::Superseded;
    qCCritical(lcCalendar).noquote().nospace()
        << "Refresh " << accountID << " failed: " << errorForLog(meetings.error().description());
    m_store.replace(accountID, {});
    co_return FetchOutcome::Stored;
}

void AppEnvironment::startRefresh()
{
    startTask("refresh", refresh());
}

void AppEnvironment::followAccounts()
{
    QSet<QString> ids;
    for (const CalendarAccount &account : m_registry.accounts())
        ids.insert(account.id);
    m_preferences.pruneCalendarSelections(ids);

    QSet<QString> stale;
    for (const Meeting &meeting : m_store.upcoming()) {
        if (!ids.contains(meeting.accountID))
            stale.insert(meeting.accountID);
    }
    for (const QString &accountID : std::as_const(stale))
        m_store.removeMeetings(accountID);
    followSignIns();
    startRefresh();
}

void AppEnvironment::followSignIns()
{
    QStringList signedOut;
    for (const CalendarAccount &account : m_registry.accounts(GoogleProvider::providerID)) {
        if (m_google.oauth(account.id).isSignedOut())
            signedOut.append(account.email.value_or(account.displayName));
    }
    if (std::exchange(m_signedOut, signedOut) != signedOut)
        Q_EMIT signedOutAccountsChanged();
}

void AppEnvironment::setRefreshing(bool isRefreshing)
{
    if (m_isRefreshing == isRefreshing)
        return;
    m_isRefreshing = isRefreshing;
    Q_EMIT isRefreshingChanged();
}

void AppEnvironment::setLastRefresh(Instant instant)
{
    if (m_lastRefresh == instant)
        return;
    m_lastRefresh = instant;
    Q_EMIT lastRefreshChanged();
}

} // namespace kestrel
