#pragma once
#include <QString>
#include <QStringView>
#include <chrono>
#include <optional>

namespace kestrel {

/// An absolute point in time, UTC, in whole milliseconds.
using Instant = std::chrono::sys_time<std::chrono::milliseconds>;

/// `seconds` as a span that can be added to an Instant; fractions below a millisecond are cut.
[[nodiscard]] std::chrono::milliseconds secondsSpan(double seconds);

/// "2025-03-01T09:30:00Z": whole seconds, rounded towards the past.
[[nodiscard]] QString toInternetDateTime(Instant instant);

/// "2025-03-01T09:30:00.250Z".
[[nodiscard]] QString toInternetDateTimeWithMilliseconds(Instant instant);

/// Parses an ISO 8601 internet date-time (RFC 3339): full date, "T", full time with colons, an optional
/// fraction of a second, and "Z" or an offset with a colon. Digits past the millisecond are cut. Nothing else
/// is accepted: a bare date, a missing zone or an impossible day give nothing.
[[nodiscard]] std::optional<Instant> parseInternetDateTime(QStringView text);

} // namespace kestrel
