#pragma once
#include "demo/Answer.h"
#include "demo/SampleAccounts.h"
#include <QUrlQuery>

namespace kestrel::demo {

/// GET /calendar/v3/users/me/calendarList
[[nodiscard]] Answer calendarList(const SampleAccount &account, const QUrlQuery &query);

/// GET /calendar/v3/calendars/{id}/events. `revision` counts the changes of all calendars and stands in sync
/// tokens.
[[nodiscard]] Answer eventsList(const SampleCalendar &calendar, const QUrlQuery &query, Instant now,
                                int revision);

} // namespace kestrel::demo
