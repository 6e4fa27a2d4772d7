#pragma once
#include "demo/SampleAccounts.h"

namespace kestrel::demo {

struct LoadSize
{
    int accounts = 1;
    int calendars = 1; ///< of each account
    int events = 0; ///< of each calendar
};

/// Accounts for benchmarks, the same for the same size and anchor. Their events, about 2.4 kB each, lie
/// between 90 minutes and 22 hours after the anchor: a window of "now" and the next 24 hours holds all of
/// them for more than an hour, and no alert falls due meanwhile.
[[nodiscard]] std::vector<SampleAccount> generateLoad(const LoadSize &size, Instant anchor);

} // namespace kestrel::demo
