#pragma once
#include "base/Instant.h"
#include <QString>
#include <QUrl>
#include <optional>

namespace kestrel {

/// Hour and minute in local time as the default locale writes them: "9:05 AM", "09:05".
[[nodiscard]] QString clockTimeText(Instant instant);
/// "45 min", "1 h", "1 h 30 min".
[[nodiscard]] QString formatDuration(double seconds);
/// How long `then` lies back: "now", "5 minutes ago", "yesterday". What lies ahead is now.
[[nodiscard]] QString relativeText(Instant then, Instant now);
/// The local day: "Monday, Mar 3".
[[nodiscard]] QString agendaDateText(Instant now);
/// A map search for a place; nothing for a blank text.
[[nodiscard]] std::optional<QUrl> mapsSearchURL(const QString &location);

} // namespace kestrel
