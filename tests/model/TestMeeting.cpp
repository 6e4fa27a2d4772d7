#include "model/Meeting.h"
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

using Change = void (*)(Meeting &);

class TestMeeting final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void classifiesALinkByItsHost_data();
    void classifiesALinkByItsHost();
    void mapsTheReplyInAnyLetterCase_data();
    void mapsTheReplyInAnyLetterCase();
    void labelsAnAttendee_data();
    void labelsAnAttendee();
    void anyFieldMakesAMeetingAnother_data();
    void anyFieldMakesAMeetingAnother();
    void keepsAnAccountThroughJson_data();
    void keepsAnAccountThroughJson();
    void refusesAnIncompleteAccount_data();
    void refusesAnIncompleteAccount();
};

void TestMeeting::classifiesALinkByItsHost_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("platform");
    QTest::newRow("Meet") << u"https://meet.google.com/abc-defg-hij"_s << u"googleMeet"_s;
    QTest::newRow("Zoom's domain itself") << u"https://zoom.us/j/1"_s << u"zoom"_s;
    QTest::newRow("Zoom of a tenant") << u"https://acme.zoom.us/j/1"_s << u"zoom"_s;
    QTest::newRow("no label boundary") << u"https://notzoom.us/"_s << u"zoom"_s;
    QTest::newRow("upper case") << u"https://ACME.ZOOM.US/j/1"_s << u"zoom"_s;
    QTest::newRow("Teams for business") << u"https://teams.microsoft.com/x"_s << u"microsoftTeams"_s;
    QTest::newRow("Teams for consumers") << u"https://teams.live.com/x"_s << u"microsoftTeams"_s;
    QTest::newRow("Webex") << u"https://acme.webex.com/meet/x"_s << u"webex"_s;
    QTest::newRow("GoTo short link") << u"https://gotomeet.me/x"_s << u"gotoMeeting"_s;
    QTest::newRow("GoTo global join") << u"https://global.gotomeeting.com/join/1"_s << u"gotoMeeting"_s;
    QTest::newRow("Whereby anywhere in the host") << u"https://whereby.com.example.org/x"_s << u"whereby"_s;
    QTest::newRow("Zoom only at the end")
        << u"https://zoom.us.example.org/x"_s << u"other:zoom.us.example.org"_s;
    QTest::newRow("Around has no platform of its own")
        << u"https://meet.around.co/r/x"_s << u"other:meet.around.co"_s;
    QTest::newRow("unknown, upper case") << u"https://Talk.Example.ORG/x"_s << u"other:talk.example.org"_s;
    QTest::newRow("no host") << u"mailto:ana@example.com"_s << u"other:link"_s;
}

void TestMeeting::classifiesALinkByItsHost()
{
    QFETCH(const QString, link);
    QTEST(classifyPlatform(QUrl(link)).caseName(), "platform");
}

void TestMeeting::mapsTheReplyInAnyLetterCase_data()
{
    QTest::addColumn<std::optional<QString>>("status");
    QTest::addColumn<QString>("response");
    const auto row = [](const char *name, const std::optional<QString> &status, const QString &response) {
        QTest::newRow(name) << status << response;
    };
    row("accepted", u"accepted"_s, u"accepted"_s);
    row("upper case", u"DECLINED"_s, u"declined"_s);
    row("tentative", u"Tentative"_s, u"tentative"_s);
    row("as the provider spells it", u"needsAction"_s, u"needsAction"_s);
    row("all lower case", u"needsaction"_s, u"needsAction"_s);
    row("long s is no s", u"need\u017faction"_s, u"unknown"_s);
    row("something else", u"accepted "_s, u"unknown"_s);
    row("empty", QString(), u"unknown"_s);
    row("absent", {}, u"unknown"_s);
}

void TestMeeting::mapsTheReplyInAnyLetterCase()
{
    QFETCH(const std::optional<QString>, status);
    QTEST(rawValue(responseFromStatus(status)), "response");
}

void TestMeeting::labelsAnAttendee_data()
{
    QTest::addColumn<std::optional<QString>>("name");
    QTest::addColumn<std::optional<QString>>("email");
    QTest::addColumn<QString>("label");
    const auto row = [](const char *title, const std::optional<QString> &name,
                        const std::optional<QString> &email,
                        const QString &label) { QTest::newRow(title) << name << email << label; };
    row("name", u"Ana"_s, u"ana@example.com"_s, u"Ana"_s);
    row("empty name", u""_s, u"ana@example.com"_s, u"ana@example.com"_s);
    row("empty name and e-mail", u""_s, u""_s, u""_s);
    row("empty name, no e-mail", u""_s, {}, u"attendee.unknown"_s);
    row("neither", {}, {}, u"attendee.unknown"_s);
}

void TestMeeting::labelsAnAttendee()
{
    QFETCH(const std::optional<QString>, name);
    QFETCH(const std::optional<QString>, email);
    Attendee attendee;
    attendee.displayName = name;
    attendee.email = email;
    QTEST(attendee.displayLabel(), "label");
}

void TestMeeting::anyFieldMakesAMeetingAnother_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char *name, Change change) { QTest::newRow(name) << change; };
    row("title", [](Meeting &m) { m.title = u"Other"_s; });
    row("start", [](Meeting &m) { m.start += std::chrono::milliseconds(1); });
    row("empty location instead of none", [](Meeting &m) { m.location = u""_s; });
    row("one attendee more", [](Meeting &m) { m.attendees.append(m.attendees.first()); });
    row("a changed reply", [](Meeting &m) { m.attendees[0].response = Attendee::Response::Accepted; });
    row("an attendee's name becomes empty", [](Meeting &m) { m.attendees[0].displayName = u""_s; });
    row("letter case of the other platform",
        [](Meeting &m) { m.platform = MeetingPlatform::other(u"Talk"_s); });
    row("platform without a text", [](Meeting &m) { m.platform = MeetingPlatform::Kind::InPerson; });
    row("join link", [](Meeting &m) { m.meetingURL = QUrl(u"https://talk.example.org/2"_s); });
    row("organizer", [](Meeting &m) { m.organizerEmail.reset(); });
    row("colour", [](Meeting &m) { m.calendarColorHex = u"#ffffff"_s; });
    row("colour and account e-mail swapped",
        [](Meeting &m) { std::swap(m.calendarColorHex, m.accountEmail); });
    row("launch mode", [](Meeting &m) { m.accountMeetLaunchMode = MeetLaunchMode::Popup; });
}

void TestMeeting::anyFieldMakesAMeetingAnother()
{
    QFETCH(const Change, change);
    Meeting meeting;
    meeting.id = u"account:1"_s;
    meeting.title = u"Talk"_s;
    meeting.attendees.resize(1);
    meeting.platform = MeetingPlatform::other(u"talk"_s);
    meeting.meetingURL = QUrl(u"https://talk.example.org/1"_s);
    meeting.organizerEmail = u"ana@example.com"_s;
    meeting.accountEmail = u"ana@example.com"_s;

    Meeting changed = meeting;
    QCOMPARE(changed, meeting);
    QCOMPARE(qHash(changed), qHash(meeting));
    change(changed);
    QVERIFY(changed != meeting);
    QVERIFY(qHash(changed) != qHash(meeting));
}

void TestMeeting::keepsAnAccountThroughJson_data()
{
    QTest::addColumn<std::optional<QString>>("email");
    QTest::newRow("with e-mail") << std::optional(u"ana@example.com"_s);
    QTest::newRow("without e-mail") << std::optional<QString>();
}

void TestMeeting::keepsAnAccountThroughJson()
{
    QFETCH(const std::optional<QString>, email);
    const CalendarAccount account { .id = u"a1"_s,
                                    .providerID = u"google"_s,
                                    .email = email,
                                    .displayName = u"Ana"_s,
                                    .meetLaunchMode = MeetLaunchMode::Popup,
                                    .calendarColorOverrides = { { u"primary"_s, u"#112233"_s } } };
    QCOMPARE(account.toJson().contains("email"_L1), email.has_value());
    QCOMPARE(CalendarAccount::fromJson(account.toJson()), account);
}

void TestMeeting::refusesAnIncompleteAccount_data()
{
    QTest::addColumn<QByteArray>("change");
    QTest::addColumn<QString>("fault");
    QTest::newRow("no id") << R"({"id": null})"_ba << u"id: expected a text"_s;
    QTest::newRow("a number for a text") << R"({"displayName": 1})"_ba << u"displayName: expected a text"_s;
    QTest::newRow("e-mail of the wrong kind") << R"({"email": false})"_ba << u"email: expected a text"_s;
    QTest::newRow("no launch mode") << R"({"meetLaunchMode": null})"_ba
                                    << u"meetLaunchMode: expected a text"_s;
    QTest::newRow("unknown launch mode")
        << R"({"meetLaunchMode": "Tab"})"_ba << u"meetLaunchMode: unknown launch mode Tab"_s;
    QTest::newRow("no overrides") << R"({"calendarColorOverrides": null})"_ba
                                  << u"calendarColorOverrides: expected an object"_s;
    QTest::newRow("a list of overrides")
        << R"({"calendarColorOverrides": []})"_ba << u"calendarColorOverrides: expected an object"_s;
    QTest::newRow("an override that is no text") << R"({"calendarColorOverrides": {"primary": 3}})"_ba
                                                 << u"calendarColorOverrides.primary: expected a text"_s;
}

void TestMeeting::refusesAnIncompleteAccount()
{
    QFETCH(const QByteArray, change);
    QJsonObject json =
        CalendarAccount { u"a1"_s, u"google"_s, {}, u"Ana"_s, MeetLaunchMode::Tab, {} }.toJson();
    QVERIFY(CalendarAccount::fromJson(json));
    const QJsonObject changes = QJsonDocument::fromJson(change).object();
    for (auto entry = changes.begin(); entry != changes.end(); ++entry) {
        if (entry.value().isNull())
            json.remove(entry.key());
        else
            json.insert(entry.key(), entry.value());
    }
    const auto account = CalendarAccount::fromJson(json);
    QVERIFY(!account);
    QTEST(account.error().description, "fault");
}

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestMeeting)
#include "TestMeeting.moc"
