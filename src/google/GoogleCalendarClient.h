#pragma once
#include "auth/AuthErrors.h"
#include "google/WireRecords.h"
#include <QCoro/QCoroTask>
#include <QUrl>
#include <expected>
#include <memory>
#include <optional>
#include <variant>

namespace kestrel {

class GoogleOAuth;
class HttpTransport;
class PageTurns;

struct CalendarError
{
    enum class Kind { HttpStatus, Decoding, NoEvents, FullSyncRequired };
    Kind kind = Kind::NoEvents;
    int status = 0; ///< of HttpStatus; -1 when the answer was not HTTP
    QString text; ///< body of HttpStatus, message of Decoding

    [[nodiscard]] QString description() const;
    friend bool operator==(const CalendarError &, const CalendarError &) = default;
};

/// What a read can fail with: the calendar's own answer, the token, or the way there.
using CalendarFailure = std::variant<CalendarError, AuthError>;

[[nodiscard]] QString description(const CalendarFailure &failure);
/// A newer read for the same calendar took this one's place while both waited for a network.
/// As for an AuthError.
[[nodiscard]] QString causeOf(const CalendarFailure &failure);

[[nodiscard]] bool isSuperseded(const CalendarFailure &failure);

/// The two reads of the Google Calendar API v3 for one account. Keeps no state about failures; retries once,
/// after a 401 and a forced refresh. What it is given must outlive it and its tasks.
class GoogleCalendarClient final
{
public:
    /// Answers are decoded in the turns of `turns`, one at a time for all clients that share it.
    GoogleCalendarClient(GoogleOAuth &oauth, HttpTransport &transport, QUrl apiBase,
                         std::shared_ptr<PageTurns> turns);

    [[nodiscard]] QCoro::Task<std::expected<Google::CalendarListResponse, CalendarFailure>> calendarList();
    /// The first page, at most 250 events. With a sync token the bounds are not sent.
    [[nodiscard]] QCoro::Task<std::expected<Google::EventsListResponse, CalendarFailure>>
    events(QString calendarID, std::optional<Instant> timeMin, std::optional<Instant> timeMax,
           std::optional<QString> syncToken = {});

private:
    GoogleOAuth &m_oauth;
    HttpTransport &m_transport;
    QUrl m_apiBase;
    std::shared_ptr<PageTurns> m_turns;
};

} // namespace kestrel
