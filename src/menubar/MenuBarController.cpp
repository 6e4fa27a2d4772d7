#include "menubar/MenuBarController.h"
#include "meet/MeetState.h"
#include "menubar/AgendaPopover.h"
#include "menubar/MeetingChoice.h"
#include "model/EventStore.h"
#include "preferences/Preferences.h"
#include "ui/Symbols.h"
#include <QCoreApplication>
#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr std::chrono::milliseconds refreshInterval = std::chrono::seconds(30);

/// Whole minutes from `now` to `start`, a part of one counting as one.
qint64 minutesUntil(Instant start, Instant now)
{
    return std::chrono::ceil<std::chrono::minutes>(start - now).count();
}

QString countdownLabel(Instant start, Instant now)
{
    const qint64 minutes = minutesUntil(start, now);
    if (minutes <= 0)
        return qtTrId("menubar.now");
    if (minutes < 60)
        return qtTrId("menubar.in_m %lld").arg(minutes);
    return qtTrId("menubar.in_h_m %lld %lld").arg(minutes / 60).arg(minutes % 60);
}

} // namespace

MenuBarController::MenuBarController(EventStore &store, const Preferences &preferences,
                                     const MeetState &meetState, const Clock &clock, StatusItemHost &host,
                                     AgendaPopover &popover)
    : m_store(store)
    , m_preferences(preferences)
    , m_meetState(meetState)
    , m_clock(clock)
    , m_host(host)
    , m_popover(popover)
{
    const auto queued = Qt::QueuedConnection;
    connect(&store, &EventStore::upcomingChanged, this, &MenuBarController::updateTitle, queued);
    connect(&preferences, &Preferences::changed, this, &MenuBarController::updateTitle, queued);
    for (const auto changed : { &MeetState::inMeetingChanged, &MeetState::micOnChanged,
                                &MeetState::handRaisedChanged, &MeetState::sharingChanged })
        connect(&meetState, changed, this, &MenuBarController::updateTitle, queued);
    connect(&host, &StatusItemHost::activated, this, &MenuBarController::togglePopover);
    connect(&host, &StatusItemHost::menuTriggered, this, &MenuBarController::runMenuEntry);
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &MenuBarController::updateTitle);
    updateTitle();
}

void MenuBarController::updateTitle()
{
    const Instant now = m_clock.now();
    scheduleNextUpdate(now);
    StatusItemState next = state(now);
    if (next == m_shown)
        return;
    m_shown = std::move(next);
    m_host.show(*m_shown);
    Q_EMIT updated();
}

void MenuBarController::setSignedOut(const QStringList &accounts)
{
    m_signedOut = accounts;
    updateTitle();
}

void MenuBarController::showPopover()
{
    m_popover.show();
}

void MenuBarController::togglePopover(QPoint hint)
{
    m_popover.toggle(hint);
}

StatusItemState MenuBarController::state(Instant now) const
{
    const auto next = nextMeeting(now);
    QStringList parts { meetIndicator(), next ? countdownLabel(next->start, now) : QString() };
    parts.removeAll(QString());
    const QString title = parts.join(u' ');

    QString symbol = u"chevron.forward.2"_s;
    if (m_meetState.inMeeting() && m_preferences.showMeetMicInMenuBar())
        symbol = m_meetState.micOn() ? u"mic.fill"_s : u"mic.slash.fill"_s;

    const QString signedOut =
        m_signedOut.isEmpty() ? QString() : qtTrId("signed_out.message %@").arg(m_signedOut.join(u", "_s));
    QStringList toolTip { u"Kestrel"_s, title, next ? next->title : QString(), signedOut };
    toolTip.removeAll(QString());

    const double lead = static_cast<double>(m_preferences.leadTimeMinutes()) * 60;
    QList<StatusItemMenuEntry> menu { { u"open"_s, qtTrId("menu.open_agenda") },
                                      { u"join"_s, qtTrId("menu.join_next"),
                                        meetingToJoin(m_store, lead, now).has_value() },
                                      { u"refresh"_s, qtTrId("popover.footer.refresh") },
                                      { u"settings"_s, qtTrId("popover.footer.settings") },
                                      { {}, {} },
                                      { u"quit"_s, qtTrId("popover.footer.quit") } };
    if (!m_signedOut.isEmpty())
        menu.prepend({ u"accounts"_s, qtTrId("signed_out.action") });
    return { symbol, symbolSvg(symbol), title, toolTip.join(u" – "_s), menu };
}

QString MenuBarController::meetIndicator() const
{
    if (!m_meetState.inMeeting())
        return {};
    QStringList parts;
    if (m_meetState.handRaised())
        parts.append(u"✋"_s);
    if (m_meetState.sharing())
        parts.append(u"🖥\uFE0F"_s);
    return parts.join(u' ');
}

std::optional<Meeting> MenuBarController::nextMeeting(Instant now) const
{
    const auto next = m_store.nextUp(now, static_cast<double>(m_preferences.highlightToleranceSeconds()));
    if (next.isEmpty())
        return {};
    return next.first();
}

/// Twice a minute, and one of the two when the countdown's minute is over, so that what the panel says is
/// never late.
void MenuBarController::scheduleNextUpdate(Instant now)
{
    std::chrono::milliseconds wait = refreshInterval;
    if (const auto next = nextMeeting(now)) {
        const std::chrono::minutes label(minutesUntil(next->start, now) - 1);
        wait = std::min(wait, next->start - label - now);
    }
    m_timer.start(std::max(wait, std::chrono::milliseconds(1)));
}

void MenuBarController::runMenuEntry(const QString &id)
{
    if (id == "open"_L1)
        showPopover();
    else if (id == "join"_L1)
        Q_EMIT joinRequested();
    else if (id == "refresh"_L1)
        Q_EMIT refreshRequested();
    else if (id == "settings"_L1)
        Q_EMIT settingsRequested();
    else if (id == "accounts"_L1)
        Q_EMIT accountsRequested();
    else if (id == "quit"_L1)
        Q_EMIT quitRequested();
}

} // namespace kestrel
