#include "menubar/AgendaModel.h"
#include "google/AccountRegistry.h"
#include "menubar/RefreshControl.h"
#include "model/EventStore.h"
#include "preferences/Preferences.h"
#include "ui/DisplayFormats.h"
#include <QCoreApplication>
#include <QSet>

using namespace Qt::StringLiterals;

namespace kestrel {

AgendaModel::AgendaModel(EventStore &store, AccountRegistry &registry, Preferences &preferences,
                         RefreshControl &refreshControl, MeetingOpener &opener, const Clock &clock)
    : m_store(store)
    , m_registry(registry)
    , m_preferences(preferences)
    , m_refreshControl(refreshControl)
    , m_clock(clock)
    , m_cards(opener, clock)
    , m_laterToday(opener, clock)
{
    m_timer.setInterval(std::chrono::seconds(30));
    connect(&m_timer, &QTimer::timeout, this, &AgendaModel::evaluate);
    connect(&store, &EventStore::upcomingChanged, this, &AgendaModel::evaluateIfActive);
    connect(&registry, &AccountRegistry::accountsChanged, this, &AgendaModel::evaluateIfActive);
    connect(&preferences, &Preferences::changed, this, &AgendaModel::evaluateIfActive);
    connect(&refreshControl, &RefreshControl::isRefreshingChanged, this, &AgendaModel::changed);
    connect(&refreshControl, &RefreshControl::lastRefreshChanged, this, &AgendaModel::changed);
    connect(&refreshControl, &RefreshControl::signedOutAccountsChanged, this, &AgendaModel::changed);
}

void AgendaModel::setActive(bool active)
{
    if (active == m_timer.isActive())
        return;
    if (active) {
        evaluate();
        m_timer.start();
    } else {
        m_timer.stop();
    }
}

void AgendaModel::retranslate()
{
    m_cards.retranslate();
    m_laterToday.retranslate();
    evaluate();
}

void AgendaModel::evaluateIfActive()
{
    if (isActive())
        evaluate();
}

void AgendaModel::evaluate()
{
    const Instant now = m_clock.now();
    const QList<Meeting> ongoing = m_store.ongoing(now);
    const QList<Meeting> next =
        m_store.nextUp(now, static_cast<double>(m_preferences.highlightToleranceSeconds()));
    QSet<QString> onCards;
    for (const Meeting &meeting : ongoing + next)
        onCards.insert(meeting.id);
    QList<Meeting> later = m_store.today(now);
    later.removeIf(
        [&](const Meeting &meeting) { return meeting.end <= now || onCards.contains(meeting.id); });

    m_isEmpty = next.isEmpty();
    m_dateText = agendaDateText(now);
    m_cards.show(ongoing, next, now);
    m_laterToday.show({}, later, now);
    Q_EMIT changed();
}

bool AgendaModel::hasAccounts() const
{
    return !m_registry.accounts().isEmpty();
}

int AgendaModel::laterTodayHeight() const
{
    return std::min(60 * m_laterToday.count() + 8, 540);
}

QString AgendaModel::refreshToolTip() const
{
    const auto last = m_refreshControl.lastRefresh();
    if (!last)
        return qtTrId("popover.footer.refresh");
    return qtTrId("popover.footer.last_refresh") + u": "_s + relativeText(*last, m_clock.now());
}

bool AgendaModel::isRefreshing() const
{
    return m_refreshControl.isRefreshing();
}

QString AgendaModel::signedOutText() const
{
    const QStringList names = m_refreshControl.signedOutAccounts();
    return names.isEmpty() ? QString() : qtTrId("signed_out.message %@").arg(names.join(u", "_s));
}

void AgendaModel::openAccounts()
{
    Q_EMIT accountsRequested();
}

void AgendaModel::refresh()
{
    m_refreshControl.startRefresh();
}

void AgendaModel::openSettings()
{
    Q_EMIT settingsRequested();
}

void AgendaModel::quit()
{
    Q_EMIT quitRequested();
}

} // namespace kestrel
