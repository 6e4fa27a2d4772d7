#include "benchmarks/SampleTexts.h"
#include <array>
#include <random>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr std::array firstNames { "Ana",  "Bruno", "Chen",  "Dilnoza", "Émile", "Farah", "Gökçe", "Hanna",
                                  "Ines", "Jorge", "Kaito", "Lena",    "Mateo", "Nadia", "Óscar", "Priya" };
constexpr std::array lastNames { "Alonso", "Becker", "Castillo", "Duarte", "Ekström",  "Ferrari",
                                 "García", "Hughes", "Ivanova",  "Jensen", "Kowalski", "López" };
constexpr std::array subjects {
    "Planning",           "Retrospective", "Design review",       "Coffee", "Hiring panel", "Roadmap",
    "Incident follow-up", "Customer call", "Revisión trimestral", "1:1"
};
constexpr std::array answers { "accepted", "needsAction", "declined", "tentative" };
constexpr std::array rooms { "Room Tramuntana, 4th floor", "Calle Mayor 12, Madrid", "Building B – Aurora" };
constexpr std::array paragraphs {
    R"(<p>Hello all,<br>please read the <a href=\"https://docs.example.com/d/1x-%1/edit\">notes</a> before we meet.</p>)",
    R"(<ul><li>What we learnt last week</li><li>Numbers &amp; open questions</li><li>Who does what</li></ul>)",
    R"(<p><b>Agenda</b>&nbsp;(30 min)<br>1. Status of the release<br>2. Risks, and what we do about them<br>3. Any other business</p>)",
    R"(<p>If the time does not suit you, move it; the series stays as it is. Thank you for answering soon!</p>)",
    R"(\n\nDial-in: +34 900 000 000, code %1#\n\n)",
    R"(<p>The recording of the last session is in the shared folder, together with the slides and the list of actions that we agreed on. Please add your points to the document <i>before</i> the meeting so that all can prepare.</p>)",
};
constexpr std::array invitations {
    R"(<p>Join: <a href=\"https://acme.zoom.us/j/%1?pwd=aGVsbG8\">https://acme.zoom.us/j/%1?pwd=aGVsbG8</a></p>)",
    R"(<br>________________<br>Join on your computer: <a href=\"https://teams.microsoft.com/l/meetup-join/19%3ameeting_%1%40thread.v2/0?context=%7b%22Tid%22%7d&amp;anon=true\">Click here to join</a><br>)",
    R"(<p>Meeting link: https://acme.webex.com/meet/room%1</p>)",
    R"(<p>See https://wiki.example.org/pages/%1 for everything.</p>)",
};

class Generator
{
public:
    template<typename Choices>
    const char *one(const Choices &choices)
    {
        return choices[number(choices.size())];
    }

    size_t number(size_t below) { return m_random() % below; }

    QString digits() { return QString::number(100'000'000 + number(900'000'000)); }

private:
    std::minstd_rand m_random { 20250301 };
};

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

QString attendees(Generator &generator)
{
    QStringList guests;
    for (size_t guest = 0, count = 8 + generator.number(3); guest < count; ++guest) {
        const QString first = text(generator.one(firstNames));
        const QString last = text(generator.one(lastNames));
        QString json = uR"({"email":"%1.%2@example.com")"_s.arg(first.toLower(), last.toLower());
        if (generator.number(2) == 0)
            json += uR"(,"displayName":"%1 %2")"_s.arg(first, last);
        if (guest == 0)
            json += uR"(,"organizer":true)"_s;
        if (guest == 1)
            json += uR"(,"self":true)"_s;
        guests << json + uR"(,"responseStatus":"%1"})"_s.arg(text(generator.one(answers)));
    }
    return guests.join(u',');
}

QString description(Generator &generator, bool isConference)
{
    QString html;
    for (size_t part = 0, count = 2 + generator.number(4); part < count; ++part)
        html += text(generator.one(paragraphs));
    if (!isConference)
        html += text(generator.one(invitations));
    return html.replace(u"%1"_s, generator.digits());
}

QString conference(const QString &code)
{
    return uR"("hangoutLink":"https://meet.google.com/%1","conferenceData":{"entryPoints":[)"_s.arg(code)
        + uR"({"entryPointType":"video","uri":"https://meet.google.com/%1","label":"meet.google.com/%1"},)"_s
              .arg(code)
        + uR"({"regionCode":"ES","entryPointType":"phone","uri":"tel:+34-910-000-000","label":"+34 910 00 00 00","pin":"123456789"}],)"_s
        + uR"("conferenceSolution":{"key":{"type":"hangoutsMeet"},"name":"Google Meet","iconUri":"https://icons.example.com/meet_2020q4/v6/web-512dp.png"},)"_s
        + uR"("conferenceId":"%1"},)"_s.arg(code);
}

QString event(Generator &generator, int index)
{
    const bool isConference = generator.number(10) < 5;
    const QString id = u"e%1"_s.arg(generator.digits()).repeated(2);
    const QString day = QString::number(1 + index % 28).rightJustified(2, u'0');
    const QString hour = QString::number(8 + index % 10).rightJustified(2, u'0');
    const QString first = text(generator.one(firstNames));

    QString json = uR"({"kind":"calendar#event","etag":"\"%1\"","id":"%2","status":"confirmed",)"_s.arg(
        generator.digits(), id);
    json +=
        uR"("htmlLink":"https://www.google.com/calendar/event?eid=%1%1","created":"2025-01-07T09:12:31.000Z",)"_s
            .arg(id);
    json += uR"("updated":"2025-02-24T15:03:12.417Z","summary":"%1 – %2",)"_s.arg(
        text(generator.one(subjects)), first);
    json += uR"("description":"%1",)"_s.arg(description(generator, isConference));
    if (generator.number(3) == 0)
        json += uR"("location":"%1",)"_s.arg(text(generator.one(rooms)));
    json += uR"("creator":{"email":"%1.alonso@example.com"},)"_s.arg(first.toLower());
    json += uR"("organizer":{"email":"%1.alonso@example.com","displayName":"%2 Alonso"},)"_s.arg(
        first.toLower(), first);
    json +=
        uR"("start":{"dateTime":"2025-03-%1T%2:00:00+01:00","timeZone":"Europe/Madrid"},)"_s.arg(day, hour);
    json += uR"("end":{"dateTime":"2025-03-%1T%2:45:00+01:00","timeZone":"Europe/Madrid"},)"_s.arg(day, hour);
    json += uR"("iCalUID":"%1@google.com","sequence":%2,)"_s.arg(id).arg(generator.number(5));
    json += uR"("attendees":[%1],)"_s.arg(attendees(generator));
    if (isConference) {
        const QString letters = QString::number(index + 456'976, 26).rightJustified(4, u'0');
        QString code;
        for (const QChar digit : letters.right(4))
            code += QChar(static_cast<char16_t>(u'a' + digit.digitValue()
                                                + (digit.isLetter() ? digit.unicode() - 86 : 0)));
        json += conference(u"abc-%1-xyz"_s.arg(code));
    }
    return json + uR"("reminders":{"useDefault":true},"eventType":"default"})"_s;
}

QString filled(qsizetype size, QStringView unit)
{
    return unit.toString().repeated(size / unit.size());
}

} // namespace

QByteArray sampleEventsList(int events)
{
    Generator generator;
    QStringList items;
    for (int index = 0; index < events; ++index)
        items << event(generator, index);
    const QString list =
        uR"({"kind":"calendar#events","etag":"\"p33\"","summary":"work","timeZone":"Europe/Madrid",)"_s
        + uR"("accessRole":"owner","defaultReminders":[],"nextSyncToken":"CPDAlvWDx70CEPDAlvWDx70C","items":[%1]})"_s
              .arg(items.join(u",\n"));
    return list.toUtf8();
}

const std::vector<HostileText> &hostileTexts()
{
    static const std::vector<HostileText> texts {
        { "links without a host", [](qsizetype size) { return filled(size, u"https://"); } },
        { "links to each other", [](qsizetype size) { return filled(size, u"https://a.b/"); } },
        { "whereby links without a space",
          [](qsizetype size) { return filled(size, u"https://whereby.com/"); } },
        { "one link of every platform, no space",
          [](qsizetype size) {
              return u"https://meet.google.com/abc-defg-hij?https://teams.microsoft.com/l/meetup-join/https://teams.live.com/meet/"_s
                  + u"https://a.webex.com/meet/https://gotomeet.me/https://global.gotomeeting.com/join/https://whereby.com/"_s
                  + filled(size, u"x");
          } },
        { "a host of labels",
          [](qsizetype size) { return u"https://"_s + filled(size, u"aaaa.") + u"whereby"_s; } },
        { "a host of one label", [](qsizetype size) { return u"https://"_s + filled(size, u"a"); } },
        { "zoom links without a number",
          [](qsizetype size) { return filled(size, u"https://a.zoom.us/j/ "); } },
        { "escaped ampersands", [](qsizetype size) { return u"https://"_s + filled(size, u"&amp;"); } },
        { "spaces at the end of a link",
          [](qsizetype size) { return u"https://whereby.com/a"_s + filled(size, u"&nbsp;"); } },
        { "bare ampersands", [](qsizetype size) { return u"https://a.b/"_s + filled(size, u"&"); } },
        { "colons", [](qsizetype size) { return filled(size, u":"); } },
        { "colons and slashes", [](qsizetype size) { return filled(size, u"s://"); } },
        { "full stops behind a link", [](qsizetype size) { return u"https://a.b/"_s + filled(size, u"."); } },
        { "combining marks",
          [](qsizetype size) { return u"https://a"_s + filled(size, u"\u0301\u0302\u0323"); } },
        { "lone surrogates",
          [](qsizetype size) { return u"https://whereby.com/"_s + QString(size, QChar(0xD800)); } },
        { "no link at all",
          [](qsizetype size) { return filled(size, u"Please come in time, and bring a cake. "); } },
    };
    return texts;
}

QList<Meeting> sampleMeetings(const QString &accountID, int count, Instant first)
{
    QList<Meeting> meetings;
    meetings.reserve(count);
    for (int index = 0; index < count; ++index) {
        Meeting meeting;
        meeting.id = u"%1:%2"_s.arg(accountID).arg(index);
        meeting.accountID = accountID;
        meeting.title = u"Meeting %1"_s.arg(index);
        meeting.start = first + std::chrono::minutes(10 * index);
        meeting.end = meeting.start + std::chrono::minutes(45);
        meeting.attendees.resize(9);
        meeting.meetingURL = QUrl(u"https://meet.google.com/abc-defg-hij"_s);
        meeting.platform = MeetingPlatform::Kind::GoogleMeet;
        meeting.organizerEmail = u"ana@example.com"_s;
        meetings.append(meeting);
    }
    return meetings;
}

} // namespace kestrel
