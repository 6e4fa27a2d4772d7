#include "alerts/AlertScheduler.h"
#include "alerts/AlertPresenter.h"
#include "base/Log.h"
#include "model/EventStore.h"
#include "platform/WakeTimer.h"
#include "preferences/Preferences.h"
#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace kestrel {

namespace {

QStringList identifiers(const QList<Meeting> &meetings)
{
    QStringList ids;
    ids.reserve(meetings.size());
    for (const Meeting &meeting : meetings)
        ids.append(meeting.id);
    return ids;
}

/// The preference file may hold any number; no meeting is looked at more than a year ahead.
std::chrono::seconds leadTime(const Preferences &preferences)
{
    constexpr qint64 year = 366LL * 24 * 60;
    return std::chrono::seconds(std::clamp(preferences.leadTimeMinutes(), -year, year) * 60);
}

} // namespace

AlertScheduler::AlertScheduler(EventStore &store, AlertPresenter &presenter, Preferences &preferences,
                               const Clock &clock, WakeTimer &timer)
    : m_store(&store)
    , m_presenter(&presenter)
    , m_preferences(preferences)
    , m_clock(clock)
    , m_timer(timer)
    , m_upcomingIDs(identifiers(store.upcoming()))
{
    connect(&store, &EventStore::upcomingChanged, this, &AlertScheduler::rearmIfOthersAreUpcoming);
    connect(&preferences, &Preferences::changed, this, &AlertScheduler::rearmLater);
    connect(&timer, &WakeTimer::clockJumped, this, &AlertScheduler::rearmLater);
    connect(&timer, &WakeTimer::fired, this, &AlertScheduler::presentLater);
    rearmLater();
}

void AlertScheduler::rearmLater()
{
    QMetaObject::invokeMethod(this, &AlertScheduler::rearm, Qt::QueuedConnection);
}

void AlertScheduler::rearmIfOthersAreUpcoming()
{
    QStringList ids = identifiers(m_store->upcoming());
    if (ids == m_upcomingIDs)
        return;
    m_upcomingIDs = std::move(ids);
    rearmLater();
}

void AlertScheduler::rearm()
{
    m_timer.cancel();
    if (m_armed && m_armed->date <= m_clock.now()) {
        // this plan came between the instant and the timer's word of it: planned anew, a one-minute alert
        // would be dropped as past
        presentLater();
        return;
    }
    m_armed.reset();
    if (!m_store || !m_presenter) {
        qCInfo(lcAlerts) << "rearm skipped: store/presenter nil";
        return;
    }

    const Instant now = m_clock.now();
    const std::chrono::seconds lead = leadTime(m_preferences);
    QMap<Instant, QList<const Meeting *>> groups;
    qsizetype candidates = 0;
    for (const Meeting &meeting : m_store->upcoming()) {
        if (meeting.start <= now)
            continue;
        groups[meeting.start].append(&meeting);
        ++candidates;
    }

    m_armed = earliestFire(groups, now, lead);
    if (!m_armed) {
        qCInfo(lcAlerts).noquote().nospace()
            << "rearm: no candidates (upcoming=" << candidates << ", lead=" << lead.count() << "s)";
        return;
    }
    const auto delay = std::max<Instant::duration>(m_armed->date - now, 0ms);
    qCInfo(lcAlerts).noquote().nospace()
        << "rearm: next fire in " << std::chrono::floor<std::chrono::seconds>(delay).count()
        << "s (primary=" << m_armed->isPrimary << ", meetings=" << m_armed->meetings.size() << ")";
    m_timer.arm(m_armed->date);
}

std::optional<AlertScheduler::Fire>
AlertScheduler::earliestFire(const QMap<Instant, QList<const Meeting *>> &groups, Instant now,
                             std::chrono::seconds lead) const
{
    std::optional<Instant> date;
    const QList<const Meeting *> *chosen = nullptr;
    bool isPrimary = true;
    const auto consider = [&](Instant due, const QList<const Meeting *> &group, bool primary) {
        if (date && due >= *date)
            return;
        date = due;
        chosen = &group;
        isPrimary = primary;
    };
    const auto hasNewOne = [](const QList<const Meeting *> &group, const QSet<QString> &alerted) {
        return std::ranges::any_of(group,
                                   [&](const Meeting *meeting) { return !alerted.contains(meeting->id); });
    };

    const bool alertsTwice = m_preferences.secondaryAlertOneMinute();
    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        if (hasNewOne(*group, m_firedPrimary)) {
            const Instant due = group.key() - lead;
            consider(due > now ? due : now + 100ms, *group, true);
        }
        if (alertsTwice && hasNewOne(*group, m_firedSecondary)) {
            const Instant due = group.key() - 60s;
            if (due > now)
                consider(due, *group, false);
        }
    }
    if (!date)
        return {};
    Fire fire { *date, {}, isPrimary };
    for (const Meeting *meeting : *chosen)
        fire.meetings.append(*meeting);
    return fire;
}

void AlertScheduler::presentLater()
{
    if (!m_armed)
        return;
    // out of m_armed at once, so that no plan in between can take it for one that still waits
    QMetaObject::invokeMethod(
        this, [this, fire = *std::exchange(m_armed, {})] { presentFire(fire); }, Qt::QueuedConnection);
}

void AlertScheduler::presentFire(Fire fire)
{
    // slept over: who would be told of a meeting that is over?
    const Instant now = m_clock.now();
    fire.meetings.removeIf(
        [now](const Meeting &meeting) { return std::max(meeting.start, meeting.end) <= now; });
    qCInfo(lcAlerts).noquote().nospace()
        << "timer fired — presenting " << fire.meetings.size() << " alert(s)";
    for (const Meeting &meeting : std::as_const(fire.meetings)) {
        if (!m_presenter)
            break;
        m_presenter->present(meeting);
        (fire.isPrimary ? m_firedPrimary : m_firedSecondary).insert(meeting.id);
    }
    rearm();
}

} // namespace kestrel
