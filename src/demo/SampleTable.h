#pragma once
#include "base/DecodingError.h"
#include "demo/SampleAccounts.h"
#include <expected>

namespace kestrel::demo {

/// The accounts of a table like sample-events.json, with their events placed around `anchor`. What the rows
/// may hold stands in docs/sample-google.md; anything else in them is an error, so that a slip of the pen
/// does not pass.
[[nodiscard]] std::expected<std::vector<SampleAccount>, DecodingError> readSampleTable(const QByteArray &json,
                                                                                       Instant anchor);

/// One row of such a table.
[[nodiscard]] std::expected<SampleEvent, DecodingError> readEventRow(const QJsonObject &row,
                                                                     const SampleAccount &account,
                                                                     const SampleCalendar &calendar,
                                                                     Instant anchor);

/// The table that the program carries.
[[nodiscard]] QByteArray builtInSampleTable();

} // namespace kestrel::demo
