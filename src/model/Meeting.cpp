#include "model/Meeting.h"
#include "model/OptionalHash.h"

using namespace Qt::StringLiterals;

namespace kestrel {

QString Attendee::displayLabel() const
{
    if (displayName && !displayName->isEmpty())
        return *displayName;
    return email ? *email : qtTrId("attendee.unknown");
}

QString rawValue(Attendee::Response response)
{
    switch (response) {
    case Attendee::Response::Accepted:
        return u"accepted"_s;
    case Attendee::Response::Declined:
        return u"declined"_s;
    case Attendee::Response::Tentative:
        return u"tentative"_s;
    case Attendee::Response::NeedsAction:
        return u"needsAction"_s;
    case Attendee::Response::Unknown:
        return u"unknown"_s;
    }
    Q_UNREACHABLE();
}

Attendee::Response responseFromStatus(const std::optional<QString> &status)
{
    using enum Attendee::Response;
    if (!status)
        return Unknown;
    for (const auto response : { Accepted, Declined, Tentative, NeedsAction }) {
        // as it is nearly always spelled, and only then in another letter case
        if (*status == rawValue(response))
            return response;
    }
    const QString lower = status->toLower();
    for (const auto response : { Accepted, Declined, Tentative, NeedsAction }) {
        if (lower == rawValue(response).toLower())
            return response;
    }
    return Unknown;
}

size_t qHash(const Attendee &attendee, size_t seed)
{
    return qHashMulti(seed, attendee.id, optionalHash(attendee.email), optionalHash(attendee.displayName),
                      rawValue(attendee.response), attendee.isOrganizer, attendee.isSelf);
}

size_t qHash(const Meeting &meeting, size_t seed)
{
    return qHashMulti(seed, meeting.id, meeting.accountID, meeting.providerID, meeting.calendarID,
                      meeting.title, meeting.start.time_since_epoch().count(),
                      meeting.end.time_since_epoch().count(), optionalHash(meeting.location),
                      meeting.attendees.size(), meeting.attendees, optionalHash(meeting.meetingURL),
                      meeting.platform, optionalHash(meeting.organizerEmail), meeting.isCancelled,
                      optionalHash(meeting.canonicalURL), optionalHash(meeting.calendarColorHex),
                      optionalHash(meeting.accountEmail), rawValue(meeting.accountMeetLaunchMode));
}

} // namespace kestrel
