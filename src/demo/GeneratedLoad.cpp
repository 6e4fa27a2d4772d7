#include "demo/GeneratedLoad.h"
#include "demo/SampleTable.h"
#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace kestrel::demo {

namespace {

constexpr int firstMinute = 90;
constexpr int lastMinute = 22 * 60;

const QStringList &topics()
{
    static const QStringList texts { u"Planning"_s,           u"Design review"_s, u"Support rota"_s,
                                     u"Release check"_s,      u"Interview"_s,     u"Budget"_s,
                                     u"Onboarding session"_s, u"Risk round"_s };
    return texts;
}

/// What invitations are made of: markup, entities, an agenda, somebody's footer.
QString description(int number, const QString &join)
{
    QString text = u"<p>Hello everyone,</p><p>these are the points for <b>"_s
        + topics()[number % topics().size()] + u"</b> (round "_s + QString::number(number) + u"):</p><ol>"_s;
    for (int point = 0; point < 5; ++point) {
        text +=
            u"<li>%1 &ndash; what changed since last time, what is blocked, and who needs help</li>"_s.arg(
                topics()[(number + point) % topics().size()]);
    }
    text +=
        u"</ol><p>Please add your notes &amp; questions to the "
        "<a href=\"http://notes.example.org/round?number=%1&amp;view=all\">shared page</a> before we meet.</p>"_s
            .arg(number);
    if (!join.isEmpty()) {
        text += u"<p>──────────<br>Join from a computer or a phone:<br><a href=\"%1\">%1</a><br>"
                "One tap: +1&nbsp;555&nbsp;0100,,%2#</p>"_s.arg(join, QString::number(100000 + number));
    }
    return text
        + u"<p><i>If you cannot come, decline the invitation, so that the room can be smaller.</i></p>"_s;
}

QString joinLink(int number)
{
    switch (number % 6) {
    case 0:
        return u"https://example.zoom.us/j/%1?pwd=c2FtcGxl&amp;from=addon"_s.arg(1000000000 + number);
    case 1:
        return u"https://teams.microsoft.com/l/meetup-join/19%3ameeting_sample"_s + QString::number(number)
            + u"%40thread.v2/0?context=%7b%22Tid%22%3a%22sample%22%7d&amp;anon=true"_s;
    case 2:
        return u"https://example.webex.com/meet/sample.%1"_s.arg(number);
    case 3:
        return u"https://video.example.org/rooms/%1"_s.arg(number);
    default:
        return {}; // Meet stands in conferenceData, and some events have no link at all
    }
}

QString meetCode(int number)
{
    QString code = u"kes-demo-aaa"_s;
    for (int digit = 0; digit < 3; ++digit, number /= 26)
        code[code.size() - 1 - digit] = QChar(u'a' + number % 26);
    return code;
}

QJsonObject row(int number, int count, const QString &idPrefix)
{
    QJsonObject fields {
        { u"id"_s, idPrefix + QString::number(number) },
        { u"title"_s, u"%1 %2"_s.arg(topics()[number % topics().size()]).arg(number) },
        // whole five minutes, so that some share a start
        { u"startsInMinutes"_s, (firstMinute + (lastMinute - firstMinute) * number / count) / 5 * 5 },
        { u"lastsMinutes"_s, 15 + 15 * (number % 4) },
        { u"description"_s, description(number, joinLink(number)) },
        { u"attendeeCount"_s, 4 + number % 5 },
    };
    if (number % 6 == 4)
        fields.insert(u"meetCode"_s, meetCode(number));
    if (number % 6 == 5)
        fields.insert(u"location"_s, u"Room %1, second floor"_s.arg(number % 40));
    return fields;
}

} // namespace

std::vector<SampleAccount> generateLoad(const LoadSize &size, Instant anchor)
{
    static const QStringList colors { u"#7986CB"_s, u"#33B679"_s, u"#E67C73"_s, u"#F6BF26"_s };
    std::vector<SampleAccount> accounts;
    for (int a = 0; a < size.accounts; ++a) {
        SampleAccount account { .email = u"load.%1@example.com"_s.arg(a), .name = u"Load %1"_s.arg(a) };
        for (int c = 0; c < size.calendars; ++c) {
            SampleCalendar calendar { .id = c == 0 ? account.email
                                                   : u"load.%1.%2@group.calendar.example.com"_s.arg(a).arg(c),
                                      .summary = c == 0 ? account.email : u"Calendar %1"_s.arg(c),
                                      .isPrimary = c == 0,
                                      .backgroundColor = colors[c % colors.size()],
                                      .zone = QTimeZone::systemTimeZone() };
            const QString idPrefix = u"load%1c%2e"_s.arg(a).arg(c);
            for (int e = 0; e < size.events; ++e) {
                auto event = readEventRow(row(e, size.events, idPrefix), account, calendar, anchor);
                // rows are made in the order of their starts: no search for each one's place
                calendar.events.push_back(std::move(event).value());
            }
            account.calendars.push_back(std::move(calendar));
        }
        accounts.push_back(std::move(account));
    }
    return accounts;
}

} // namespace kestrel::demo
