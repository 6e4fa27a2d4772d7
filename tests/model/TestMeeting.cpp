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
    void classifiesALinkByItsHost_data()
    {
        QTest::addColumn<QString>("link");
        QTest::addColumn<QString>("platform");
        QTest::newRow("Zoom's domain itself") << u"https://zoom.us/j/1"_s << u"zoom"_s;
        QTest::newRow("no label boundary") << u"https://notzoom.us/"_s << u"zoom"_s;
        QTest::newRow("upper case") << u"https://ACME.ZOOM.US/j/1"_s << u"zoom"_s;
        QTest::newRow("Whereby anywhere in the host")
            << u"https://whereby.com.example.org/x"_s << u"whereby"_s;
        QTest::newRow("Zoom only at the end")
            << u"https://zoom.us.example.org/x"_s << u"other:zoom.us.example.org"_s;
        QTest::newRow("Around has no platform of its own")
            << u"https://meet.around.co/r/x"_s << u"other:meet.around.co"_s;
        QTest::newRow("no host") << u"mailto:ana@example.com"_s << u"other:link"_s;
    }

    void classifiesALinkByItsHost()
    {
        QFETCH(const QString, link);
        QTEST(classifyPlatform(QUrl(link)).caseName(), "platform");
    }

    void mapsTheReplyInAnyLetterCase()
    {
        QCOMPARE(responseFromStatus(u"DECLINED"_s), Attendee::Response::Declined);
        QCOMPARE(responseFromStatus(u"needsAction"_s), Attendee::Response::NeedsAction);
        QCOMPARE(responseFromStatus(u"need\u017faction"_s), Attendee::Response::Unknown); // a long s is no s
        QCOMPARE(responseFromStatus(u"accepted "_s), Attendee::Response::Unknown);
        QCOMPARE(responseFromStatus({}), Attendee::Response::Unknown);
    }

    void labelsAnAttendee()
    {
        Attendee attendee;
        QCOMPARE(attendee.displayLabel(), u"attendee.unknown"_s);
        attendee.displayName = u""_s;
        QCOMPARE(attendee.displayLabel(), u"attendee.unknown"_s);
        attendee.email = u"ana@example.com"_s;
        QCOMPARE(attendee.displayLabel(), u"ana@example.com"_s);
        attendee.displayName = u"Ana"_s;
        QCOMPARE(attendee.displayLabel(), u"Ana"_s);
    }

    void anyFieldMakesAMeetingAnother_data()
    {
        QTest::addColumn<Change>("change");
        const auto row = [](const char *name, Change change) { QTest::newRow(name) << change; };
        row("title", [](Meeting &m) { m.title = u"Other"_s; });
        row("empty location instead of none", [](Meeting &m) { m.location = u""_s; });
        row("a changed reply", [](Meeting &m) { m.attendees[0].response = Attendee::Response::Accepted; });
        row("an attendee's name becomes empty", [](Meeting &m) { m.attendees[0].displayName = u""_s; });
        row("letter case of the other platform",
            [](Meeting &m) { m.platform = MeetingPlatform::other(u"Talk"_s); });
        row("colour and account e-mail swapped",
            [](Meeting &m) { std::swap(m.calendarColorHex, m.accountEmail); });
    }

    void anyFieldMakesAMeetingAnother()
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

    void refusesAnIncompleteAccount_data()
    {
        QTest::addColumn<QByteArray>("change");
        QTest::addColumn<QString>("fault");
        QTest::newRow("no id") << R"({"id": null})"_ba << u"id: expected a text"_s;
        QTest::newRow("e-mail of the wrong kind") << R"({"email": false})"_ba << u"email: expected a text"_s;
        QTest::newRow("unknown launch mode")
            << R"({"meetLaunchMode": "Tab"})"_ba << u"meetLaunchMode: unknown launch mode Tab"_s;
        QTest::newRow("a list of overrides")
            << R"({"calendarColorOverrides": []})"_ba << u"calendarColorOverrides: expected an object"_s;
        QTest::newRow("an override that is no text") << R"({"calendarColorOverrides": {"primary": 3}})"_ba
                                                     << u"calendarColorOverrides.primary: expected a text"_s;
    }

    void refusesAnIncompleteAccount()
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
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestMeeting)
#include "TestMeeting.moc"
