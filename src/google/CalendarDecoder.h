#pragma once
#include "base/DecodingError.h"
#include "google/WireRecords.h"
#include <QByteArrayView>
#include <expected>

namespace kestrel {

/// Strict decoding of the calendar API's answers: a missing required key, a value of the wrong kind or an
/// unparseable date fails the whole answer; keys that we do not know are skipped, null is absent.
[[nodiscard]] std::expected<Google::EventsListResponse, DecodingError> decodeEventsList(QByteArrayView json);
[[nodiscard]] std::expected<Google::CalendarListResponse, DecodingError>
decodeCalendarList(QByteArrayView json);

} // namespace kestrel
