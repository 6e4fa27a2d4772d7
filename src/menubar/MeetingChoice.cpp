#include "menubar/MeetingChoice.h"
#include "model/EventStore.h"
#include <algorithm>

namespace kestrel {

namespace {

template<typename Predicate>
std::optional<Meeting> firstWhere(const QList<Meeting> &meetings, Predicate holds)
{
    const auto found = std::ranges::find_if(meetings, holds);
    if (found == meetings.end())
        return {};
    return *found;
}

} // namespace

bool isJoinable(const Meeting &meeting, double leadSeconds, Instant now)
{
    return meeting.start > now && meeting.start - secondsSpan(leadSeconds) <= now && meeting.meetingURL;
}

std::optional<Meeting> meetingToJoin(const EventStore &store, double leadSeconds, Instant now)
{
    const auto soon = [=](const Meeting &meeting) { return isJoinable(meeting, leadSeconds, now); };
    if (auto meeting = firstWhere(store.upcoming(), soon))
        return meeting;
    const auto hasLink = [](const Meeting &meeting) { return meeting.meetingURL.has_value(); };
    if (auto meeting = firstWhere(store.ongoing(now), hasLink))
        return meeting;
    return firstWhere(store.upcoming(),
                      [=](const Meeting &meeting) { return meeting.start > now && hasLink(meeting); });
}

} // namespace kestrel
