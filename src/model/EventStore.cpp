#include "model/EventStore.h"
#include <QDateTime>
#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

using namespace std::chrono;

namespace kestrel {

namespace {

/// How long a meeting stays in the list after its end.
constexpr hours keptAfterEnd { 1 };
constexpr qsizetype freedPerTurn = 100;

bool startsEarlier(const Meeting *a, const Meeting *b)
{
    return a->start < b->start;
}

Instant instantOf(const QDateTime &time)
{
    return Instant(milliseconds(time.toMSecsSinceEpoch()));
}

} // namespace

EventStore::EventStore(const Clock &clock, QObject *parent)
    : QObject(parent)
    , m_clock(clock)
{
    m_freeing.setInterval(0);
    connect(&m_freeing, &QTimer::timeout, this, &EventStore::freeSomeReplaced);
}

void EventStore::replace(const QString &accountID, const QList<Meeting> &meetings)
{
    // The list is sorted already, so only what is new needs sorting; pointers, because a meeting is dear to
    // move. Copying one is dearer still, so what stays is moved over.
    // A copy, since `meetings` may be our own list.
    const QList<Meeting> given = meetings; // NOLINT(performance-unnecessary-copy-initialization)
    std::vector<const Meeting *> added;
    added.reserve(static_cast<size_t>(given.size()));
    for (const Meeting &meeting : given) {
        if (!meeting.isCancelled)
            added.push_back(&meeting);
    }
    std::stable_sort(added.begin(), added.end(), startsEarlier);

    const Instant oldestEnd = m_clock.now() - keptAfterEnd;
    QList<Meeting> held = std::exchange(m_upcoming, {});
    QList<Meeting> upcoming;
    upcoming.reserve(held.size() + given.size());
    auto next = added.cbegin();
    const auto takeAddedBefore = [&](std::optional<Instant> start) {
        for (; next != added.cend() && (!start || (*next)->start < *start); ++next) {
            if ((*next)->end > oldestEnd)
                upcoming.append(**next);
        }
    };
    for (Meeting &kept : held) {
        if (kept.accountID == accountID) {
            m_replaced.append(std::move(kept));
            continue;
        }
        takeAddedBefore(kept.start);
        if (kept.end > oldestEnd)
            upcoming.append(std::move(kept));
    }
    takeAddedBefore({});

    m_upcoming = std::move(upcoming);
    m_freeing.start();
    Q_EMIT upcomingChanged();
}

void EventStore::freeSomeReplaced()
{
    m_replaced.resize(std::max(m_replaced.size() - freedPerTurn, qsizetype(0)));
    if (m_replaced.isEmpty())
        m_freeing.stop();
}

void EventStore::clear()
{
    m_upcoming = {};
    Q_EMIT upcomingChanged();
}

void EventStore::removeMeetings(const QString &accountID)
{
    m_upcoming.removeIf([&](const Meeting &meeting) { return meeting.accountID == accountID; });
    Q_EMIT upcomingChanged();
}

QList<Meeting> EventStore::ongoing(std::optional<Instant> now) const
{
    const Instant instant = now ? *now : m_clock.now();
    std::vector<const Meeting *> running;
    for (const Meeting &meeting : m_upcoming) {
        if (meeting.start > instant)
            break;
        if (meeting.end > instant)
            running.push_back(&meeting);
    }
    std::stable_sort(running.begin(), running.end(),
                     [](const Meeting *a, const Meeting *b) { return a->end < b->end; });

    QList<Meeting> result;
    result.reserve(static_cast<qsizetype>(running.size()));
    for (const Meeting *meeting : running)
        result.append(*meeting);
    return result;
}

QList<Meeting> EventStore::nextUp(std::optional<Instant> now, double tolerance) const
{
    const Instant instant = now ? *now : m_clock.now();
    const auto future =
        std::partition_point(m_upcoming.cbegin(), m_upcoming.cend(),
                             [&](const Meeting &meeting) { return meeting.start <= instant; });
    QList<Meeting> result;
    std::optional<Instant> reference;
    for (auto meeting = future; meeting != m_upcoming.cend(); ++meeting) {
        // the calendar may hold events that end before they start
        if (meeting->end <= instant)
            continue;
        if (!reference)
            reference = meeting->start;
        // "not within" rather than "past": a tolerance that is no number finds nothing
        if (!(duration<double>(meeting->start - *reference).count() <= tolerance))
            break;
        result.append(*meeting);
    }
    return result;
}

QList<Meeting> EventStore::today(std::optional<Instant> now) const
{
    const Instant instant = now ? *now : m_clock.now();
    const QDate day = QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count()).date();
    const QDateTime dayStart = day.startOfDay();
    QDateTime dayEnd = day.addDays(1).startOfDay();
    // a zone that crosses the date line leaves out a whole day
    if (!dayEnd.isValid())
        dayEnd = day.addDays(2).startOfDay();
    if (!dayStart.isValid() || !dayEnd.isValid())
        return {};

    const auto startsBefore = [](const Meeting &meeting, Instant bound) { return meeting.start < bound; };
    const auto first =
        std::lower_bound(m_upcoming.cbegin(), m_upcoming.cend(), instantOf(dayStart), startsBefore);
    const auto last = std::lower_bound(first, m_upcoming.cend(), instantOf(dayEnd), startsBefore);
    return QList<Meeting>(first, last);
}

} // namespace kestrel
