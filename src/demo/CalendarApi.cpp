#include "demo/CalendarApi.h"
#include "demo/ReceivedRequest.h"
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>
#include <expected>
#include <optional>

using namespace Qt::StringLiterals;
using namespace std::chrono;

namespace kestrel::demo {

namespace {

constexpr int standardPage = 250;
constexpr int largestPage = 2500;
constexpr int mostInstances = 1000; ///< of one repeating event in one answer

struct EventsQuery
{
    std::optional<Instant> from;
    std::optional<Instant> to;
    bool isExpanded = false; ///< singleEvents
    int pageSize = standardPage;
    int firstOfPage = 0;
    std::optional<QString> syncToken;
};

Answer badParameter(const QString &name, const QString &value)
{
    return Answer::apiError(400, u"Invalid value \"%1\" for parameter \"%2\"."_s.arg(value, name),
                            u"invalidParameter"_s);
}

std::expected<EventsQuery, Answer> readQuery(const QUrlQuery &items)
{
    EventsQuery query;
    for (const auto &[name, place] :
         { std::pair { u"timeMin"_s, &query.from }, { u"timeMax"_s, &query.to } }) {
        if (!items.hasQueryItem(name))
            continue;
        const QString text = valueOf(items, name);
        *place = parseInternetDateTime(text);
        if (!*place)
            return std::unexpected(badParameter(name, text));
    }
    if (query.from && query.to && *query.from >= *query.to)
        return std::unexpected(
            Answer::apiError(400, u"The specified time range is empty."_s, u"timeRangeEmpty"_s));

    const QString single =
        items.hasQueryItem(u"singleEvents"_s) ? valueOf(items, u"singleEvents"_s) : u"false"_s;
    if (single != u"true" && single != u"false")
        return std::unexpected(badParameter(u"singleEvents"_s, single));
    query.isExpanded = single == u"true";

    const QString order = valueOf(items, u"orderBy"_s);
    if (!order.isEmpty() && order != u"startTime" && order != u"updated")
        return std::unexpected(badParameter(u"orderBy"_s, order));
    if (order == u"startTime" && !query.isExpanded) {
        return std::unexpected(Answer::apiError(
            400, u"The requested ordering is not available for the particular query."_s, u"badRequest"_s));
    }

    if (items.hasQueryItem(u"maxResults"_s)) {
        bool isNumber = false;
        const QString text = valueOf(items, u"maxResults"_s);
        query.pageSize = std::min(text.toInt(&isNumber), largestPage);
        if (!isNumber || query.pageSize < 1)
            return std::unexpected(badParameter(u"maxResults"_s, text));
    }
    if (items.hasQueryItem(u"pageToken"_s)) {
        bool isNumber = false;
        const QString text = valueOf(items, u"pageToken"_s);
        query.firstOfPage = text.startsWith(u"sample-page-") ? text.section(u'-', 2).toInt(&isNumber) : -1;
        if (!isNumber || query.firstOfPage < 0)
            return std::unexpected(badParameter(u"pageToken"_s, text));
    }
    if (items.hasQueryItem(u"syncToken"_s)) {
        if (query.from || query.to || !order.isEmpty()) {
            return std::unexpected(Answer::apiError(
                400, u"Sync token cannot be combined with other query restrictions."_s, u"badRequest"_s));
        }
        query.syncToken = valueOf(items, u"syncToken"_s);
    }
    return query;
}

struct Item
{
    Instant start;
    QByteArray json;
};

QByteArray instanceJson(const SampleEvent &event, Instant start, const QTimeZone &zone)
{
    const QString stamp = QDateTime::fromMSecsSinceEpoch(start.time_since_epoch().count(), Qt::UTC)
                              .toString(u"yyyyMMdd'T'HHmmss'Z'");
    QJsonObject fields = event.fields;
    fields.insert(u"id"_s, event.id + u'_' + stamp);
    fields.insert(u"recurringEventId"_s, event.id);
    fields.insert(u"start"_s, eventTime(start, zone));
    fields.insert(u"originalStartTime"_s, eventTime(start, zone));
    fields.insert(u"end"_s, eventTime(start + (event.end - event.start), zone));
    return QJsonDocument(fields).toJson(QJsonDocument::Compact);
}

/// The API's window: what ends after `from` and starts before `to`.
bool isIn(Instant start, Instant end, const EventsQuery &query)
{
    return (!query.from || end > *query.from) && (!query.to || start < *query.to);
}

void appendInstances(const SampleEvent &event, const SampleCalendar &calendar, const EventsQuery &query,
                     Instant now, std::vector<Item> &items)
{
    const auto length = event.end - event.start;
    const Instant horizon = query.to.value_or(now + hours(24 * 30));
    Instant start = event.start;
    if (query.from && *query.from > event.end)
        start += (*query.from - event.end) / event.period * event.period;
    for (int count = 0; start < horizon && count < mostInstances; start += event.period, ++count) {
        if (isIn(start, start + length, query))
            items.push_back({ start, instanceJson(event, start, calendar.zone) });
    }
}

} // namespace

Answer calendarList(const SampleAccount &account, const QUrlQuery &query)
{
    static const QStringList roles { u"freeBusyReader"_s, u"reader"_s, u"writer"_s, u"owner"_s };
    const QString least =
        query.hasQueryItem(u"minAccessRole"_s) ? valueOf(query, u"minAccessRole"_s) : roles.first();
    if (!roles.contains(least))
        return badParameter(u"minAccessRole"_s, least);
    QJsonArray items;
    for (const SampleCalendar &calendar : account.calendars) {
        if (roles.indexOf(calendar.accessRole) >= roles.indexOf(least))
            items.append(calendar.listEntry());
    }
    return Answer::json({ { u"kind"_s, u"calendar#calendarList"_s },
                          { u"nextSyncToken"_s, u"sample-list"_s },
                          { u"items"_s, items } });
}

Answer eventsList(const SampleCalendar &calendar, const QUrlQuery &items, Instant now, int revision)
{
    const auto query = readQuery(items);
    if (!query)
        return query.error();
    const QString syncToken = u"sample-sync-%1"_s.arg(revision);
    if (query->syncToken && *query->syncToken != syncToken)
        return Answer::apiError(410, u"Sync token is no longer valid, a full sync is required."_s,
                                u"fullSyncRequired"_s);

    std::vector<Item> found;
    if (!query->syncToken) { // a token of this very revision: nothing has changed since
        for (const SampleEvent &event : calendar.events) {
            if (event.period.count() > 0 && query->isExpanded)
                appendInstances(event, calendar, *query, now, found);
            else if (isIn(event.start, event.end, *query))
                found.push_back({ event.start, event.json });
        }
        std::ranges::stable_sort(found, {}, &Item::start);
    }

    const auto first = std::min(static_cast<std::size_t>(query->firstOfPage), found.size());
    const auto last = std::min(first + static_cast<std::size_t>(query->pageSize), found.size());
    QJsonObject head { { u"kind"_s, u"calendar#events"_s },
                       { u"summary"_s, calendar.summary },
                       { u"timeZone"_s, QString::fromLatin1(calendar.zone.id()) },
                       { u"accessRole"_s, calendar.accessRole },
                       { u"defaultReminders"_s, QJsonArray() } };
    if (last < found.size())
        head.insert(u"nextPageToken"_s, u"sample-page-%1"_s.arg(last));
    else
        head.insert(u"nextSyncToken"_s, syncToken);

    // the prepared texts are joined as they are: a page of 600 kB costs a copy, not a serialisation
    QByteArray body = QJsonDocument(head).toJson(QJsonDocument::Compact).chopped(1) + R"(,"items":[)";
    qsizetype size = body.size() + 2;
    for (std::size_t i = first; i < last; ++i)
        size += found[i].json.size() + 1;
    body.reserve(size);
    for (std::size_t i = first; i < last; ++i) {
        if (i > first)
            body += ',';
        body += found[i].json;
    }
    return Answer::jsonText(body + "]}");
}

} // namespace kestrel::demo
