#pragma once
#include "base/Instant.h"
#include "model/Meeting.h"
#include <optional>

namespace kestrel {

class EventStore;

/// It has a link, has not started, and starts within the lead time.
[[nodiscard]] bool isJoinable(const Meeting &meeting, double leadSeconds, Instant now);

/// The one that "join next meeting" means: what starts within the lead time, else what is running, else the
/// next one; only meetings with a link count.
[[nodiscard]] std::optional<Meeting> meetingToJoin(const EventStore &store, double leadSeconds, Instant now);

} // namespace kestrel
