#include "demo/SampleTable.h"
#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <cmath>

using namespace Qt::StringLiterals;
using namespace std::chrono;

namespace kestrel::demo {

namespace {

const QStringList &rowKeys()
{
    static const QStringList keys {
        u"id"_s,
        u"note"_s,
        u"title"_s,
        u"startsInMinutes"_s,
        u"startsBeforeMidnight"_s,
        u"allDayInDays"_s,
        u"lastsMinutes"_s,
        u"lastsDays"_s,
        u"repeatsEveryMinutes"_s,
        u"description"_s,
        u"descriptionTimes"_s,
        u"location"_s,
        u"status"_s,
        u"meetCode"_s,
        u"hangoutLink"_s,
        u"conference"_s,
        u"organizer"_s,
        u"attendees"_s,
        u"attendeeCount"_s,
        u"answer"_s,
    };
    return keys;
}

milliseconds minutesSpan(double minutes)
{
    return milliseconds(std::llround(minutes * 60'000));
}

Instant startOfDay(const QDate &day, const QTimeZone &zone)
{
    return Instant(milliseconds(day.startOfDay(zone).toMSecsSinceEpoch()));
}

/// When a row takes place, and how the API writes that.
struct Times
{
    Instant start;
    Instant end;
    QJsonObject startField;
    QJsonObject endField;
};

std::expected<Times, DecodingError> readTimes(const QJsonObject &row, const QTimeZone &zone, Instant anchor)
{
    const QDate today = QDateTime::fromMSecsSinceEpoch(anchor.time_since_epoch().count(), zone).date();
    if (row.contains(u"allDayInDays")) {
        const QDate first = today.addDays(row.value(u"allDayInDays").toInt());
        const QDate end = first.addDays(row.value(u"lastsDays").toInt(1));
        return Times { startOfDay(first, zone),
                       startOfDay(end, zone),
                       { { u"date"_s, first.toString(Qt::ISODate) } },
                       { { u"date"_s, end.toString(Qt::ISODate) } } };
    }
    Instant start = anchor;
    if (row.value(u"startsInMinutes").isDouble())
        start += minutesSpan(row.value(u"startsInMinutes").toDouble());
    else if (row.value(u"startsBeforeMidnight").isDouble())
        start =
            startOfDay(today.addDays(1), zone) - minutesSpan(row.value(u"startsBeforeMidnight").toDouble());
    else
        return std::unexpected(DecodingError { u"an event without a start"_s });
    const Instant end = start + minutesSpan(row.value(u"lastsMinutes").toDouble(30));
    return Times { start, end, eventTime(start, zone), eventTime(end, zone) };
}

QJsonObject meetConference(const QString &code)
{
    const QJsonObject video { { u"entryPointType"_s, u"video"_s },
                              { u"uri"_s, u"https://meet.google.com/"_s + code },
                              { u"label"_s, u"meet.google.com/"_s + code } };
    const QJsonObject phone { { u"entryPointType"_s, u"phone"_s },
                              { u"uri"_s, u"tel:+1-555-0100"_s },
                              { u"label"_s, u"+1 555-0100"_s },
                              { u"pin"_s, u"123456789"_s } };
    // the phone stands first, as it may: the kind of an entry point counts, not its place
    return { { u"conferenceId"_s, code },
             { u"entryPoints"_s, QJsonArray { phone, video } },
             { u"conferenceSolution"_s,
               QJsonObject { { u"key"_s, QJsonObject { { u"type"_s, u"hangoutsMeet"_s } } },
                             { u"name"_s, u"Google Meet"_s } } } };
}

/// {"name": …, "uri": …}: another service that put itself into the event through an add-on.
QJsonObject addOnConference(const QJsonObject &conference)
{
    const QJsonObject video { { u"entryPointType"_s, u"video"_s }, { u"uri"_s, conference.value(u"uri") } };
    return { { u"entryPoints"_s, QJsonArray { video } },
             { u"conferenceSolution"_s,
               QJsonObject { { u"key"_s, QJsonObject { { u"type"_s, u"addOn"_s } } },
                             { u"name"_s, conference.value(u"name") } } } };
}

/// Rows name people as "mail", or as {"email", "name", "answer"}.
QJsonObject person(const QJsonValue &value)
{
    const QJsonObject row = value.isString() ? QJsonObject { { u"email"_s, value } } : value.toObject();
    QJsonObject fields;
    if (row.contains(u"email"))
        fields.insert(u"email"_s, row.value(u"email"));
    if (row.contains(u"name"))
        fields.insert(u"displayName"_s, row.value(u"name"));
    return fields;
}

QJsonArray attendees(const QJsonObject &row, const SampleAccount &account, const QJsonObject &organizer)
{
    QJsonArray list;
    const auto add = [&](QJsonObject fields, const QString &answer) {
        if (fields.value(u"email") == account.email)
            fields.insert(u"self"_s, true);
        if (fields.contains(u"email") && fields.value(u"email") == organizer.value(u"email"))
            fields.insert(u"organizer"_s, true);
        fields.insert(u"responseStatus"_s, answer);
        list.append(fields);
    };
    const QJsonArray named = row.value(u"attendees").toArray();
    const int count = row.value(u"attendeeCount").toInt();
    if (named.isEmpty() && count == 0 && !row.contains(u"answer"))
        return list;

    add({ { u"email"_s, account.email }, { u"displayName"_s, account.name } },
        row.value(u"answer").toString(u"accepted"_s));
    for (const QJsonValue each : named)
        add(person(each), each.toObject().value(u"answer").toString(u"needsAction"_s));
    static const QStringList answers { u"accepted"_s, u"tentative"_s, u"needsAction"_s, u"declined"_s };
    while (list.size() < count) {
        const QString number = QString::number(list.size()).rightJustified(3, u'0');
        add({ { u"email"_s, u"guest.%1@example.org"_s.arg(number) },
              { u"displayName"_s, u"Guest %1"_s.arg(number) } },
            answers[list.size() % answers.size()]);
    }
    return list;
}

DecodingError inRow(const QJsonObject &row, const QString &fault)
{
    return { u"row \"%1\": %2"_s.arg(row.value(u"id").toString(), fault) };
}

} // namespace

std::expected<SampleEvent, DecodingError> readEventRow(const QJsonObject &row, const SampleAccount &account,
                                                       const SampleCalendar &calendar, Instant anchor)
{
    for (const QString &key : row.keys()) {
        if (!rowKeys().contains(key))
            return std::unexpected(inRow(row, u"unknown key \"%1\""_s.arg(key)));
    }
    const QString id = row.value(u"id").toString();
    if (id.isEmpty())
        return std::unexpected(DecodingError { u"an event without an id"_s });
    const auto times = readTimes(row, calendar.zone, anchor);
    if (!times)
        return std::unexpected(inRow(row, times.error().description));

    const QJsonObject organizer = row.contains(u"organizer")
        ? person(row.value(u"organizer"))
        : QJsonObject { { u"email"_s, account.email }, { u"displayName"_s, account.name } };
    const QByteArray eid = (id + u' ' + calendar.id).toUtf8().toBase64(QByteArray::OmitTrailingEquals);
    const QString made = toInternetDateTimeWithMilliseconds(anchor - hours(24 * 7));
    QJsonObject fields { { u"kind"_s, u"calendar#event"_s },
                         { u"etag"_s, u"\"%1\""_s.arg(anchor.time_since_epoch().count()) },
                         { u"id"_s, id },
                         { u"status"_s, row.value(u"status").toString(u"confirmed"_s) },
                         { u"htmlLink"_s,
                           u"https://calendar.example.com/event?eid="_s + QString::fromLatin1(eid) },
                         { u"created"_s, made },
                         { u"updated"_s, made },
                         { u"creator"_s, organizer },
                         { u"organizer"_s, organizer },
                         { u"start"_s, times->startField },
                         { u"end"_s, times->endField },
                         { u"iCalUID"_s, id + u"@sample.example.com"_s },
                         { u"sequence"_s, 0 },
                         { u"reminders"_s, QJsonObject { { u"useDefault"_s, true } } },
                         { u"eventType"_s, u"default"_s } };
    if (row.contains(u"title"))
        fields.insert(u"summary"_s, row.value(u"title"));
    if (row.contains(u"description")) {
        const int repetitions = row.value(u"descriptionTimes").toInt(1);
        fields.insert(u"description"_s, row.value(u"description").toString().repeated(repetitions));
    }
    if (row.contains(u"location"))
        fields.insert(u"location"_s, row.value(u"location"));
    if (const QJsonArray list = attendees(row, account, organizer); !list.isEmpty())
        fields.insert(u"attendees"_s, list);
    if (const QString code = row.value(u"meetCode").toString(); !code.isEmpty()) {
        fields.insert(u"hangoutLink"_s, u"https://meet.google.com/"_s + code);
        fields.insert(u"conferenceData"_s, meetConference(code));
    }
    if (row.contains(u"hangoutLink"))
        fields.insert(u"hangoutLink"_s, row.value(u"hangoutLink"));
    if (row.contains(u"conference"))
        fields.insert(u"conferenceData"_s, addOnConference(row.value(u"conference").toObject()));

    SampleEvent event { .id = id,
                        .start = times->start,
                        .end = times->end,
                        .json = QJsonDocument(fields).toJson(QJsonDocument::Compact) };
    if (const int period = row.value(u"repeatsEveryMinutes").toInt(); period > 0) {
        event.period = minutes(period);
        event.fields = fields;
    }
    return event;
}

std::expected<std::vector<SampleAccount>, DecodingError> readSampleTable(const QByteArray &json,
                                                                         Instant anchor)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (document.isNull())
        return std::unexpected(
            DecodingError { u"%1 at byte %2"_s.arg(parseError.errorString()).arg(parseError.offset) });

    std::vector<SampleAccount> accounts;
    for (const QJsonValue accountValue : document.object().value(u"accounts").toArray()) {
        SampleAccount account { .email = accountValue[u"email"].toString(),
                                .name = accountValue[u"name"].toString() };
        for (const QJsonValue value : accountValue[u"calendars"].toArray()) {
            // what names no zone is in the person's own
            const QByteArray zoneId = value[u"timeZone"].toString().toLatin1();
            SampleCalendar calendar { .id = value[u"id"].toString(),
                                      .summary = value[u"summary"].toString(),
                                      .isPrimary = value[u"primary"].toBool(),
                                      .accessRole = value[u"accessRole"].toString(u"owner"_s),
                                      .backgroundColor = value[u"backgroundColor"].toString(),
                                      .zone = zoneId.isEmpty() ? QTimeZone::systemTimeZone()
                                                               : QTimeZone(zoneId) };
            if (!calendar.zone.isValid())
                calendar.zone = QTimeZone::utc();
            for (const QJsonValue row : value[u"events"].toArray()) {
                auto event = readEventRow(row.toObject(), account, calendar, anchor);
                if (!event)
                    return std::unexpected(event.error());
                calendar.put(std::move(*event));
            }
            account.calendars.push_back(std::move(calendar));
        }
        accounts.push_back(std::move(account));
    }
    if (accounts.empty())
        return std::unexpected(DecodingError { u"no accounts"_s });
    return accounts;
}

QByteArray builtInSampleTable()
{
    QFile file(u":/demo/sample-events.json"_s);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace kestrel::demo
