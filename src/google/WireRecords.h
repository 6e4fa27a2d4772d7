#pragma once
#include "base/Instant.h"
#include <QList>
#include <QString>
#include <optional>

/// The answers of the Google Calendar API v3, field by field. Names are the JSON keys.
namespace kestrel::Google {

struct DateTime
{
    std::optional<Instant> dateTime;
    std::optional<QString> date; ///< the date of an all-day event
    std::optional<QString> timeZone;
};

struct Attendee
{
    std::optional<QString> email;
    std::optional<QString> displayName;
    std::optional<QString> responseStatus;
    std::optional<bool> organizer;
    std::optional<bool> self;
};

struct Organizer
{
    std::optional<QString> email;
    std::optional<QString> displayName;
};

struct EntryPoint
{
    std::optional<QString> entryPointType;
    std::optional<QString> uri;
    std::optional<QString> label;
};

struct ConferenceSolution
{
    std::optional<QString> name;
    std::optional<QString> iconUri;
};

struct ConferenceData
{
    std::optional<QList<EntryPoint>> entryPoints;
    std::optional<ConferenceSolution> conferenceSolution;
};

struct Event
{
    QString id;
    std::optional<QString> status;
    std::optional<QString> summary;
    std::optional<QString> description;
    std::optional<QString> location;
    std::optional<QString> htmlLink;
    std::optional<DateTime> start;
    std::optional<DateTime> end;
    std::optional<QList<Attendee>> attendees;
    std::optional<Organizer> organizer;
    std::optional<QString> hangoutLink;
    std::optional<ConferenceData> conferenceData;
};

struct EventsListResponse
{
    QList<Event> items;
    std::optional<QString> nextPageToken;
    std::optional<QString> nextSyncToken;
};

struct CalendarListEntry
{
    QString id;
    QString summary;
    std::optional<bool> primary;
    std::optional<QString> backgroundColor;
};

struct CalendarListResponse
{
    QList<CalendarListEntry> items;
};

} // namespace kestrel::Google
