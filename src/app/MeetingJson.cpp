#include "app/MeetingJson.h"

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

QJsonValue textOrNull(const std::optional<QString> &text)
{
    return text ? QJsonValue(*text) : QJsonValue::Null;
}

QJsonValue addressOrNull(const std::optional<QUrl> &url)
{
    return url ? QJsonValue(QString::fromLatin1(url->toEncoded())) : QJsonValue::Null;
}

QJsonObject toJson(const Attendee &attendee)
{
    return {
        { u"id"_s, attendee.id },
        { u"email"_s, textOrNull(attendee.email) },
        { u"displayName"_s, textOrNull(attendee.displayName) },
        { u"response"_s, rawValue(attendee.response) },
        { u"isOrganizer"_s, attendee.isOrganizer },
        { u"isSelf"_s, attendee.isSelf },
    };
}

} // namespace

QJsonObject toJson(const Meeting &meeting)
{
    QJsonArray attendees;
    for (const Attendee &attendee : meeting.attendees)
        attendees.append(toJson(attendee));
    return {
        { u"id"_s, meeting.id },
        { u"accountID"_s, meeting.accountID },
        { u"providerID"_s, meeting.providerID },
        { u"calendarID"_s, meeting.calendarID },
        { u"title"_s, meeting.title },
        { u"start"_s, toInternetDateTimeWithMilliseconds(meeting.start) },
        { u"end"_s, toInternetDateTimeWithMilliseconds(meeting.end) },
        { u"location"_s, textOrNull(meeting.location) },
        { u"attendees"_s, attendees },
        { u"meetingURL"_s, addressOrNull(meeting.meetingURL) },
        { u"platform"_s, meeting.platform.caseName() },
        { u"organizerEmail"_s, textOrNull(meeting.organizerEmail) },
        { u"isCancelled"_s, meeting.isCancelled },
        { u"canonicalURL"_s, addressOrNull(meeting.canonicalURL) },
        { u"calendarColorHex"_s, textOrNull(meeting.calendarColorHex) },
        { u"accountEmail"_s, textOrNull(meeting.accountEmail) },
        { u"accountMeetLaunchMode"_s, rawValue(meeting.accountMeetLaunchMode) },
    };
}

QJsonArray toJson(const QList<Meeting> &meetings)
{
    QJsonArray array;
    for (const Meeting &meeting : meetings)
        array.append(toJson(meeting));
    return array;
}

} // namespace kestrel
