#include "google/CalendarDecoder.h"
#include "google/GoogleEventMapper.h"
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// An event that becomes a meeting, with nothing that is optional.
Google::Event plainEvent()
{
    Google::Event event;
    event.id = u"e1"_s;
    event.start.emplace().dateTime = Instant(std::chrono::hours(483'000));
    event.end.emplace().dateTime = Instant(std::chrono::hours(483'001));
    return event;
}

std::optional<Meeting> map(const Google::Event &event)
{
    return GoogleEventMapper().map(event, { u"a1"_s, u"primary"_s, {}, {}, MeetLaunchMode::Tab });
}

Google::EntryPoint entryPoint(const std::optional<QString> &type, const std::optional<QString> &uri)
{
    return { .entryPointType = type, .uri = uri, .label = {} };
}

QString shown(const Meeting &meeting)
{
    const QString link =
        meeting.meetingURL ? QString::fromUtf8(meeting.meetingURL->toEncoded()) : u"no link"_s;
    const QString place = meeting.location ? u'[' + *meeting.location + u']' : u"no place"_s;
    return meeting.platform.caseName() + u", "_s + link + u", "_s + place;
}

} // namespace

class TestGoogleEventMapper final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void makesMeetingsOfAnAnswer();

    void dropsWhatIsNoMeeting()
    {
        Google::Event event = plainEvent();
        event.status = u"cancelled "_s;
        QVERIFY(map(event));
        event.status = u"Cancelled"_s;
        QVERIFY(!map(event));

        event = plainEvent(); // declined
        Google::Attendee self;
        self.self = true;
        self.responseStatus = u"declined"_s;
        event.attendees = { self };
        QVERIFY(map(event));

        event = plainEvent();
        std::swap(event.start, event.end); // ends before it starts
        QVERIFY(map(event));
        event.end->dateTime.reset();
        QVERIFY(!map(event));
    }

    void cleansTheTitle_data()
    {
        QTest::addColumn<std::optional<QString>>("summary");
        QTest::addColumn<QString>("title");
        const auto row = [](const char *name, const std::optional<QString> &summary, const QString &title) {
            QTest::newRow(name) << summary << title;
        };
        const QString untitled = u"meeting.untitled"_s;
        const QString long140 = u"x"_s.repeated(139) + u"🎉"_s;
        row("absent", {}, untitled);
        row("spaces and controls", u" \t\n\u0007\u200b\u2003 "_s, untitled);
        row("line breaks vanish", u"a\nb"_s, u"ab"_s);
        row("141", long140 + u"y"_s, long140);
        row("140 with accents", u"e\u0301"_s.repeated(141), u"e\u0301"_s.repeated(140));
        row("trimmed before it is cut, not after", u" "_s + u"x"_s.repeated(139) + u" yz"_s,
            u"x"_s.repeated(139) + u" "_s);
    }

    void cleansTheTitle()
    {
        QFETCH(const std::optional<QString>, summary);
        Google::Event event = plainEvent();
        event.summary = summary;
        QTEST(map(event)->title, "title");
    }

    void findsLinkPlatformAndPlace_data()
    {
        QTest::addColumn<std::optional<QString>>("description");
        QTest::addColumn<std::optional<QString>>("location");
        QTest::addColumn<QString>("found");
        const auto row = [](const char *name, const std::optional<QString> &description,
                            const std::optional<QString> &location, const QString &found) {
            QTest::newRow(name) << description << location << found;
        };
        row("nothing", {}, {}, u"other:platform.unknown, no link, no place"_s);
        row("a place", {}, u" Room 5\n"_s, u"inPerson, no link, [Room 5]"_s);
        row("an escaped link for a place", {}, u" https://talk.example.org/?a&amp;b"_s,
            u"other:talk.example.org, https://talk.example.org/?a&b, no place"_s);
        row("a place with a link in it", {}, u"Room 5, https://a.zoom.us/j/1"_s,
            u"zoom, https://a.zoom.us/j/1, [Room 5, https://a.zoom.us/j/1]"_s);
        row("the description's link and another for a place", u"https://a.zoom.us/j/1"_s,
            u"https://talk.example.org/r"_s, u"zoom, https://a.zoom.us/j/1, no place"_s);
        row("http is neither link nor no place", {}, u"http://talk.example.org/"_s,
            u"inPerson, no link, [http://talk.example.org/]"_s);
        row("not trimmed again", {}, u"\u200b Room 5"_s, u"inPerson, no link, [ Room 5]"_s);
        row("201 characters", {}, u"é"_s.repeated(201),
            u"inPerson, no link, ["_s + u"é"_s.repeated(200) + u"]"_s);
    }

    void findsLinkPlatformAndPlace()
    {
        QFETCH(const std::optional<QString>, description);
        QFETCH(const std::optional<QString>, location);
        Google::Event event = plainEvent();
        event.description = description;
        event.location = location;
        QTEST(shown(map(event).value()), "found");
    }

    void choosesTheConferenceLink_data()
    {
        QTest::addColumn<std::optional<QList<Google::EntryPoint>>>("entryPoints");
        QTest::addColumn<std::optional<QString>>("hangout");
        QTest::addColumn<QString>("link");
        const auto row = [](const char *name, const std::optional<QList<Google::EntryPoint>> &entryPoints,
                            const std::optional<QString> &hangout,
                            const QString &link) { QTest::newRow(name) << entryPoints << hangout << link; };
        const QString meet = u"https://meet.google.com/aaa-aaaa-aaa"_s;
        const QString webex = u"https://acme.webex.com/meet/ana"_s;
        const QString teams = u"https://teams.live.com/meet/1"_s;
        const QString fromText = u"https://a.zoom.us/j/1"_s;
        using Entries = QList<Google::EntryPoint>;
        const auto phone = entryPoint(u"phone"_s, u"https://meet.google.com/bbb-bbbb-bbb"_s);
        row("the first video entry",
            Entries { phone, entryPoint(u"Video"_s, webex), entryPoint(u"video"_s, teams) }, meet, webex);
        row("no video entry", Entries { phone, entryPoint({}, teams) }, meet, meet);
        row("an empty video entry stops the search",
            Entries { entryPoint(u"video"_s, u""_s), entryPoint(u"video"_s, webex) }, meet, meet);
        row("an empty hangout link", {}, u""_s, fromText);
        row("off the allowlist", Entries { entryPoint(u"video"_s, u"https://talk.example.org/r"_s) }, meet,
            fromText);
        row("http", Entries { entryPoint(u"video"_s, u"http://meet.google.com/aaa-aaaa-aaa"_s) }, {},
            fromText);
    }

    void choosesTheConferenceLink()
    {
        QFETCH(const std::optional<QList<Google::EntryPoint>>, entryPoints);
        QFETCH(const std::optional<QString>, hangout);
        QFETCH(const QString, link);
        Google::Event event = plainEvent();
        event.description = u"https://a.zoom.us/j/1"_s;
        event.conferenceData.emplace().entryPoints = entryPoints;
        event.hangoutLink = hangout;
        const Meeting meeting = map(event).value();
        QCOMPARE(meeting.meetingURL, QUrl(link));
        QCOMPARE(meeting.platform, classifyPlatform(QUrl(link)));
    }

    void takesOnlyHttpsForTheEventsPage()
    {
        Google::Event event = plainEvent();
        event.htmlLink = u"HTTPS://calendar.example.org/?eid=1"_s;
        QCOMPARE(map(event)->canonicalURL, QUrl(u"https://calendar.example.org/?eid=1"_s));
        for (const auto &refused : { u"http://calendar.example.org/"_s, u"javascript:alert(1)"_s,
                                     u"https://calendar.example.org/%zz"_s, u""_s }) {
            event.htmlLink = refused;
            QVERIFY2(!map(event)->canonicalURL, qPrintable(refused));
        }
    }

    void identifiesAttendees()
    {
        Google::Event event = plainEvent();
        QList<Google::Attendee> &attendees = event.attendees.emplace();
        attendees.resize(4);
        attendees[0].email = u"ana@example.com"_s;
        attendees[0].displayName = u"Ana"_s;
        attendees[1].displayName = u"Bruno"_s;
        attendees[2].email = u""_s;

        const Meeting first = map(event).value();
        const Meeting second = map(event).value();
        QCOMPARE(first.attendees.size(), 4);
        QCOMPARE(first.attendees[0].id, u"ana@example.com"_s);
        QCOMPARE(first.attendees[1].id, u"Bruno"_s);
        QCOMPARE(first.attendees[2].id, u""_s);
        QVERIFY(!first.attendees[3].id.isEmpty());
        QVERIFY(first.attendees[3].id != second.attendees[3].id);
        QVERIFY(first != second);

        QCOMPARE(responseFromStatus(u"needsAction"_s), Attendee::Response::NeedsAction);
        QCOMPARE(responseFromStatus(u"need\u017faction"_s), Attendee::Response::Unknown); // a long s is no s
        QCOMPARE(responseFromStatus(u"accepted "_s), Attendee::Response::Unknown);
    }
};

// out here, where moc does not stumble over its text
void TestGoogleEventMapper::makesMeetingsOfAnAnswer()
{
    const auto answer = decodeEventsList(R"({
        "kind": "calendar#events", "nextPageToken": "p2", "nextSyncToken": "s1", "defaultReminders": [{"minutes": 10}],
        "items": [
        {"id": "e1", "status": "tentative", "summary": "Año nuevo \ud83c\udf89", "location": "Room 5",
         "extendedProperties": {"private": {"id": 1}}, "htmlLink": "https://calendar.example.org/e1",
         "start": {"dateTime": "2025-03-01T09:30:00Z", "timeZone": "Europe/Madrid"},
         "end": {"dateTime": "2025-03-01T10:30:00Z"}, "organizer": {"email": "ana@example.com", "self": true},
         "attendees": [{"email": "ana@example.com", "displayName": "Ana", "responseStatus": "Declined", "organizer": true}],
         "hangoutLink": "https://meet.google.com/abc-defg-hij",
         "conferenceData": {"entryPoints": [{"entryPointType": "video", "uri": "https://acme.webex.com/meet/ana"}],
                            "conferenceSolution": {"name": "Webex"}}},
        {"id": "e2", "start": {"date": "2025-03-01"}, "end": {"date": "2025-03-02"}},
        {"id": "e3", "start": {"dateTime": "2025-03-01T09:30:00Z"}, "end": {"dateTime": "2025-03-01T10:30:00Z"},
         "attendees": [{"resource": true, "self": true}], "hangoutLink": "https://meet.google.com/abc-defg-hij"},
        {"id": "e4", "start": {"dateTime": "2025-03-01T09:30:00Z"}, "end": {"dateTime": "2025-03-01T10:30:00Z"},
         "description": "<p>https://a.zoom.us/j/1</p>"}]})"_ba);
    QVERIFY2(answer, qPrintable(answer.error().description));
    QCOMPARE(answer->nextPageToken, u"p2"_s);
    QCOMPARE(answer->nextSyncToken, u"s1"_s);
    QCOMPARE(answer->items.size(), 4);
    const GoogleEventMapper::Origin origin { .accountID = u"a1"_s,
                                             .calendarID = u"team@example.com"_s,
                                             .calendarColorHex = u"#4986e7"_s,
                                             .accountEmail = u"bruno@example.com"_s,
                                             .launchMode = MeetLaunchMode::Popup };

    const Meeting expected {
        .id = u"a1:e1"_s,
        .accountID = u"a1"_s,
        .providerID = u"google"_s,
        .calendarID = u"team@example.com"_s,
        .title = u"Año nuevo 🎉"_s,
        .start = parseInternetDateTime(u"2025-03-01T09:30:00Z").value(),
        .end = parseInternetDateTime(u"2025-03-01T10:30:00Z").value(),
        .location = u"Room 5"_s,
        .attendees = { { .id = u"ana@example.com"_s,
                         .email = u"ana@example.com"_s,
                         .displayName = u"Ana"_s,
                         .response = Attendee::Response::Declined,
                         .isOrganizer = true,
                         .isSelf = false } },
        .meetingURL = QUrl(u"https://acme.webex.com/meet/ana"_s),
        .platform = MeetingPlatform::Kind::Webex,
        .organizerEmail = u"ana@example.com"_s,
        .canonicalURL = QUrl(u"https://calendar.example.org/e1"_s),
        .calendarColorHex = u"#4986e7"_s,
        .accountEmail = u"bruno@example.com"_s,
        .accountMeetLaunchMode = MeetLaunchMode::Popup,
    };
    const auto mapped = [&](int index) { return GoogleEventMapper().map(answer->items[index], origin); };
    QVERIFY(mapped(0) == expected);
    QVERIFY(!mapped(1)); // all day
    QCOMPARE(mapped(2)->meetingURL, QUrl(u"https://meet.google.com/abc-defg-hij"_s));
    QVERIFY(mapped(2)->attendees.first().isSelf);
    QCOMPARE(mapped(3)->meetingURL, QUrl(u"https://a.zoom.us/j/1"_s));
}

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestGoogleEventMapper)
#include "TestGoogleEventMapper.moc"
