#pragma once
#include "base/Instant.h"
#include "model/CalendarAccount.h"
#include "model/MeetingPlatform.h"
#include <QList>
#include <QString>
#include <QUrl>
#include <optional>

namespace kestrel {

/// One participant of a meeting.
struct Attendee
{
    enum class Response { Accepted, Declined, Tentative, NeedsAction, Unknown };

    /// E-mail address, else display name, else a fresh UUID.
    QString id;
    std::optional<QString> email;
    std::optional<QString> displayName;
    Response response = Response::Unknown;
    bool isOrganizer = false;
    bool isSelf = false;

    /// The name for chips and lists.
    [[nodiscard]] QString displayLabel() const;

    friend bool operator==(const Attendee &, const Attendee &) = default;
};

/// "accepted", "declined", "tentative", "needsAction", "unknown".
[[nodiscard]] QString rawValue(Attendee::Response response);
/// The provider's response status in any letter case; absent or anything else is Unknown.
[[nodiscard]] Attendee::Response responseFromStatus(const std::optional<QString> &status);

[[nodiscard]] size_t qHash(const Attendee &attendee, size_t seed = 0);

/// One upcoming calendar event as the application sees it: a plain value, compared by all its fields.
struct Meeting
{
    /// Unique across accounts: account identifier, ":", the provider's event identifier.
    QString id;
    QString accountID;
    QString providerID;
    QString calendarID;
    /// Cleaned; never empty.
    QString title;
    Instant start;
    Instant end;
    /// A place, never a web link; at most 200 characters.
    std::optional<QString> location;
    QList<Attendee> attendees;
    /// The join link; always https.
    std::optional<QUrl> meetingURL;
    MeetingPlatform platform = MeetingPlatform::Kind::InPerson;
    std::optional<QString> organizerEmail;
    bool isCancelled = false;
    /// The event's own page in the calendar; always https.
    std::optional<QUrl> canonicalURL;
    std::optional<QString> calendarColorHex;
    std::optional<QString> accountEmail;
    MeetLaunchMode accountMeetLaunchMode = MeetLaunchMode::Tab;

    friend bool operator==(const Meeting &, const Meeting &) = default;
};

[[nodiscard]] size_t qHash(const Meeting &meeting, size_t seed = 0);

} // namespace kestrel
