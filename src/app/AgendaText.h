#pragma once
#include "model/CalendarAccount.h"
#include "model/EventStore.h"
#include <QString>

namespace kestrel {

/// The agenda for a terminal: now, next, later today, tomorrow. Times are local, in the session's format.
[[nodiscard]] QString agendaText(const EventStore &store, Instant now);

/// Every field of every meeting, a line each.
[[nodiscard]] QString meetingsText(const QList<Meeting> &meetings);

/// "in 4 min", "in 2 h 5 min", "now".
[[nodiscard]] QString untilText(Instant start, Instant now);

/// "1 account", "3 accounts".
[[nodiscard]] QString countOf(qsizetype count, QLatin1StringView one, QLatin1StringView many);

/// An account as people know it.
[[nodiscard]] QString accountName(const CalendarAccount &account);

/// `text` without anything that a terminal would act on.
[[nodiscard]] QString terminalText(const QString &text);

} // namespace kestrel
