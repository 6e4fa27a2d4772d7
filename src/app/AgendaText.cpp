#include "app/AgendaText.h"
#include "app/MeetingJson.h"
#include <QDateTime>
#include <QLocale>
#include <array>

using namespace Qt::StringLiterals;
using namespace std::chrono;

namespace kestrel {

namespace {

QDateTime localTime(Instant instant)
{
    return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count());
}

QString clockTime(Instant instant)
{
    return QLocale().toString(localTime(instant).time(), QLocale::ShortFormat);
}

QString line(const Meeting &meeting, const QString &note)
{
    constexpr int timesWidth = 19;
    const QString times = clockTime(meeting.start) + u'–' + clockTime(meeting.end);
    QStringList parts { terminalText(meeting.title), terminalText(meeting.platform.displayName()) };
    if (!note.isEmpty())
        parts.append(note);
    QString text = u"  "_s + times.leftJustified(timesWidth) + u"  "_s + parts.join(u" · "_s) + u'\n';
    const QString indent(timesWidth + 4, u' ');
    if (meeting.location)
        text += indent + terminalText(*meeting.location) + u'\n';
    if (meeting.meetingURL)
        text += indent + QString::fromLatin1(meeting.meetingURL->toEncoded()) + u'\n';
    return text;
}

QString fieldText(const QJsonValue &value)
{
    if (value.isNull())
        return u"–"_s;
    if (value.isBool())
        return value.toBool() ? u"true"_s : u"false"_s;
    return terminalText(value.toString());
}

QString attendeeText(const QJsonObject &attendee)
{
    QStringList parts;
    for (const auto field :
         { "id"_L1, "email"_L1, "displayName"_L1, "response"_L1, "isOrganizer"_L1, "isSelf"_L1 })
        parts.append(field + u'=' + fieldText(attendee[field]));
    return parts.join(u", "_s);
}

} // namespace

QString countOf(qsizetype count, QLatin1StringView one, QLatin1StringView many)
{
    return QString::number(count) + u' ' + (count == 1 ? one : many);
}

QString accountName(const CalendarAccount &account)
{
    return terminalText(account.email.value_or(account.displayName));
}

QString terminalText(const QString &text)
{
    QString safe = text;
    for (QChar &character : safe) {
        if (character.category() == QChar::Other_Control)
            character = u' ';
    }
    return safe;
}

QString untilText(Instant start, Instant now)
{
    // A countdown is rounded up: "in 1 min" until the very start.
    const auto left = ceil<minutes>(start - now);
    if (left <= 0min)
        return u"now"_s;
    if (left < 60min)
        return u"in %1 min"_s.arg(left.count());
    const auto wholeHours = floor<hours>(left);
    const auto rest = left - wholeHours;
    return rest == 0min ? u"in %1 h"_s.arg(wholeHours.count())
                        : u"in %1 h %2 min"_s.arg(wholeHours.count()).arg(rest.count());
}

QString agendaText(const EventStore &store, Instant now)
{
    const QDate today = localTime(now).date();
    const QList<Meeting> ongoing = store.ongoing(now);
    const QList<Meeting> next = store.nextUp(now);

    QString nowLines;
    for (const Meeting &meeting : ongoing)
        nowLines += line(meeting, u"until "_s + clockTime(meeting.end));
    QString nextLines;
    for (const Meeting &meeting : next)
        nextLines += line(meeting, untilText(meeting.start, now));
    QString todayLines;
    QString laterLines;
    for (const Meeting &meeting : store.upcoming()) {
        if (meeting.start <= now || next.contains(meeting))
            continue;
        (localTime(meeting.start).date() == today ? todayLines : laterLines) += line(meeting, {});
    }

    QString text = QLocale().toString(today, QLocale::LongFormat) + u'\n';
    const std::array sections { std::pair { "Now"_L1, nowLines }, std::pair { "Next"_L1, nextLines },
                                std::pair { "Later today"_L1, todayLines },
                                std::pair { "Tomorrow"_L1, laterLines } };
    bool isEmpty = true;
    for (const auto &[title, lines] : sections) {
        if (lines.isEmpty())
            continue;
        text += u'\n' + title + u'\n' + lines;
        isEmpty = false;
    }
    if (isEmpty)
        text += u"\nNo meetings in the next 24 hours.\n"_s;
    return text;
}

QString meetingsText(const QList<Meeting> &meetings)
{
    static constexpr std::array fields {
        "id"_L1,
        "accountID"_L1,
        "providerID"_L1,
        "calendarID"_L1,
        "start"_L1,
        "end"_L1,
        "location"_L1,
        "meetingURL"_L1,
        "platform"_L1,
        "organizerEmail"_L1,
        "isCancelled"_L1,
        "canonicalURL"_L1,
        "calendarColorHex"_L1,
        "accountEmail"_L1,
        "accountMeetLaunchMode"_L1,
    };
    QString text;
    for (const Meeting &meeting : meetings) {
        const QJsonObject object = toJson(meeting);
        text += terminalText(meeting.title) + u'\n';
        for (const auto field : fields)
            text += u"  "_s + QString(field).leftJustified(22) + u' ' + fieldText(object[field]) + u'\n';
        const QJsonArray attendees = object["attendees"_L1].toArray();
        for (const QJsonValue attendee : attendees)
            text +=
                u"  "_s + u"attendee"_s.leftJustified(22) + u' ' + attendeeText(attendee.toObject()) + u'\n';
        text += u'\n';
    }
    return text.isEmpty() ? u"No meetings.\n"_s : text;
}

} // namespace kestrel
