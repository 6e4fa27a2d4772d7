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
    const Groups groups = groupsAfter(now);
    m_armed = earliestFire(groups, now, m_alerted);
    if (!m_armed) {
        qsizetype candidates = 0;
        for (const auto &group : groups)
            candidates += group.size();
        qCInfo(lcAlerts).noquote().nospace() << "rearm: no candidates (upcoming=" << candidates
                                             << ", lead=" << leadTime(m_preferences).count() << "s)";
        return;
    }
    const auto delay = std::max<Instant::duration>(m_armed->date - now, 0ms);
    qCInfo(lcAlerts).noquote().nospace()
        << "rearm: next fire in " << std::chrono::floor<std::chrono::seconds>(delay).count()
        << "s (primary=" << m_armed->isPrimary << ", meetings=" << m_armed->meetings.size() << ")";
    m_timer.arm(m_armed->date);
}

QList<AlertScheduler::Fire> AlertScheduler::upcomingFires(qsizetype count) const
{
    QList<Fire> fires;
    if (!m_store)
        return fires;
    Alerted alerted = m_alerted;
    Instant now = m_clock.now();
    for (auto next = m_armed ? m_armed : earliestFire(groupsAfter(now), now, alerted);
         next && fires.size() < count; next = earliestFire(groupsAfter(now), now, alerted)) {
        for (const Meeting &meeting : std::as_const(next->meetings))
            alerted.insert(meeting.id, next->isPrimary);
        now = std::max(now, next->date);
        fires.append(*std::move(next));
    }
    return fires;
}

AlertScheduler::Groups AlertScheduler::groupsAfter(Instant now) const
{
    Groups groups;
    for (const Meeting &meeting : m_store->upcoming()) {
        if (meeting.start > now)
            groups[meeting.start].append(&meeting);
    }
    return groups;
}

std::optional<AlertScheduler::Fire> AlertScheduler::earliestFire(const Groups &groups, Instant now,
                                                                 const Alerted &alerted) const
{
    const std::chrono::seconds lead = leadTime(m_preferences);
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
    const auto hasNewOne = [](const QList<const Meeting *> &group, const QSet<std::size_t> &known) {
        return std::ranges::any_of(
            group, [&](const Meeting *meeting) { return !known.contains(Alerted::key(meeting->id)); });
    };

    const bool alertsTwice = m_preferences.secondaryAlertOneMinute();
    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        if (hasNewOne(*group, alerted.primary)) {
            const Instant due = group.key() - lead;
            consider(due > now ? due : now + 100ms, *group, true);
        }
        if (alertsTwice && hasNewOne(*group, alerted.secondary)) {
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
        m_alerted.insert(meeting.id, fire.isPrimary);
    }
    rearm();
}

} // namespace kestrel
