#include "google/GoogleEventMapper.h"
#include "model/DisplayText.h"
#include <QUuid>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr qsizetype longestTitle = 140;
constexpr qsizetype longestLocation = 200;

QString sanitizedTitle(const QString &summary)
{
    const QString title = firstCharacters(stripInvisibles(summary).trimmed(), longestTitle);
    return title.isEmpty() ? qtTrId("meeting.untitled") : title;
}

/// The first video entry point, else the older field for Hangouts and Meet.
QString conferenceLink(const Google::Event &event)
{
    if (event.conferenceData && event.conferenceData->entryPoints) {
        const auto &entries = *event.conferenceData->entryPoints;
        const auto video = std::find_if(entries.begin(), entries.end(), [](const Google::EntryPoint &entry) {
            return entry.entryPointType && entry.entryPointType->toLower() == "video"_L1;
        });
        if (video != entries.end() && video->uri && !video->uri->isEmpty())
            return *video->uri;
    }
    return event.hangoutLink.value_or(QString());
}

/// A place for people. What is left of a text of invisible characters alone is an empty place, not none.
std::optional<QString> sanitizedLocation(const std::optional<QString> &location)
{
    const QString place = location ? location->trimmed() : QString();
    if (place.isEmpty() || safeURL(place))
        return {};
    return firstCharacters(stripInvisibles(place), longestLocation);
}

Attendee mapAttendee(const Google::Attendee &source)
{
    Attendee attendee;
    if (source.email)
        attendee.id = *source.email;
    else if (source.displayName)
        attendee.id = *source.displayName;
    else
        attendee.id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    attendee.email = source.email;
    attendee.displayName = source.displayName;
    attendee.response = responseFromStatus(source.responseStatus);
    attendee.isOrganizer = source.organizer.value_or(false);
    attendee.isSelf = source.self.value_or(false);
    return attendee;
}

std::optional<QUrl> canonicalLink(const std::optional<QString> &htmlLink)
{
    if (!htmlLink || htmlLink->isEmpty())
        return {};
    QUrl url(*htmlLink, QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != "https"_L1)
        return {};
    return url;
}

} // namespace

std::optional<Meeting> GoogleEventMapper::map(const Google::Event &event, const Origin &origin) const
{
    if (event.status && event.status->toLower() == "cancelled"_L1)
        return {};
    if (!event.start || !event.start->dateTime || !event.end || !event.end->dateTime)
        return {};

    const auto conferenceURL = allowlistedMeetingURL(conferenceLink(event));
    const auto hint = conferenceURL ? std::optional(classifyPlatform(*conferenceURL)) : std::nullopt;
    const auto link = m_detector.resolve(conferenceURL, hint, event.description.value_or(QString()),
                                         event.location.value_or(QString()));

    Meeting meeting;
    meeting.id = origin.accountID + u':' + event.id;
    meeting.accountID = origin.accountID;
    meeting.providerID = u"google"_s;
    meeting.calendarID = origin.calendarID;
    meeting.title = sanitizedTitle(event.summary.value_or(QString()));
    meeting.start = *event.start->dateTime;
    meeting.end = *event.end->dateTime;
    meeting.location = sanitizedLocation(event.location);
    if (event.attendees) {
        meeting.attendees.reserve(event.attendees->size());
        for (const Google::Attendee &attendee : *event.attendees)
            meeting.attendees.append(mapAttendee(attendee));
    }
    if (link) {
        meeting.meetingURL = link->url;
        meeting.platform = link->platform;
    } else if (!meeting.location) {
        meeting.platform = MeetingPlatform::other(qtTrId("platform.unknown"));
    }
    if (event.organizer)
        meeting.organizerEmail = event.organizer->email;
    meeting.canonicalURL = canonicalLink(event.htmlLink);
    meeting.calendarColorHex = origin.calendarColorHex;
    meeting.accountEmail = origin.accountEmail;
    meeting.accountMeetLaunchMode = origin.launchMode;
    return meeting;
}

} // namespace kestrel
