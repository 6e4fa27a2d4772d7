#include "app/AgendaText.h"
#include "app/StatusText.h"
#include "support/MakeMeeting.h"
#include <QJsonArray>
#include <QTest>

using namespace kestrel;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const Instant now = *parseInternetDateTime(u"2026-03-01T12:00:00Z");

Meeting meetingAt(const QString &title, std::chrono::minutes start, std::chrono::minutes length = 30min)
{
    Meeting meeting = makeMeeting(title, now + start, now + start + length);
    meeting.platform = MeetingPlatform::Kind::Zoom;
    return meeting;
}

} // namespace

class TestAgendaText : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void putsEveryMeetingIntoItsSection()
    {
        const FixedClock clock(now);
        EventStore store(clock);
        // The tests' zone is St. John's: 08:30 local, so sixteen hours ahead is tomorrow.
        store.replace(u"A"_s,
                      { meetingAt(u"Over"_s, -40min), meetingAt(u"Running"_s, -10min),
                        meetingAt(u"Soon"_s, 4min), meetingAt(u"Lunch"_s, 3h),
                        meetingAt(u"Morning"_s, 16h) });

        const QString text = agendaText(store, now);

        const QStringList order { u"\nNow\n"_s,         u"Running · Zoom · until"_s,
                                  u"\nNext\n"_s,        u"Soon · Zoom · in 4 min"_s,
                                  u"\nLater today\n"_s, u"Lunch · "_s,
                                  u"\nTomorrow\n"_s,    u"Morning · "_s };
        qsizetype at = 0;
        for (const QString &part : order) {
            at = text.indexOf(part, at);
            QVERIFY2(at >= 0, qPrintable(part + u" is missing or misplaced in "_s + text));
        }
        QVERIFY(!text.contains("Over"_L1));
    }

    void countsDownInWholeMinutesRoundedUp_data()
    {
        QTest::addColumn<int>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("a second left") << 1 << u"in 1 min"_s;
        QTest::newRow("a minute and a second") << 61 << u"in 2 min"_s;
        QTest::newRow("more") << 7500 << u"in 2 h 5 min"_s;
    }

    void countsDownInWholeMinutesRoundedUp()
    {
        QFETCH(int, seconds);
        QTEST(untilText(now + std::chrono::seconds(seconds), now), "text");
    }

    void sendsNothingToTheTerminalThatActs()
    {
        Meeting meeting = meetingAt(u"x"_s, 4min);
        meeting.attendees = { { u"\u001b]0;title\u0007"_s, {}, u"\u009b2J"_s, {}, false, false } };
        meeting.location = u"\u001b[31mroom"_s;

        for (const QChar character : meetingsText({ meeting }))
            QVERIFY(character == u'\n' || character.category() != QChar::Other_Control);
    }

    void waybarGetsClassesAndMarkupWithoutWhatIsMarkup()
    {
        PanelStatus status;
        status.stage = PanelStatus::Stage::Soon;
        status.label = u"in 4 min"_s;
        status.title = u"R&D <b>"_s;
        status.agenda = { u"12:04  R&D <b>"_s };
        status.trouble = u"a@example.com: sign in again"_s;
        status.call = { .inMeeting = true, .micOn = false, .handRaised = true };

        const QJsonObject object = waybarObject(status);

        QCOMPARE(object["text"_L1], u"in 4 min"_s);
        QCOMPARE(object["alt"_L1], u"soon"_s);
        QCOMPARE(object["tooltip"_L1], u"a@example.com: sign in again\n12:04  R&amp;D &lt;b&gt;"_s);
        QCOMPARE(object["class"_L1],
                 (QJsonArray { u"soon"_s, u"signed-out"_s, u"in-call"_s, u"muted"_s, u"hand-raised"_s }));
        QCOMPARE(panelLine(status), u"in 4 min · R&D <b>"_s);
    }
};

QTEST_GUILESS_MAIN(TestAgendaText)
#include "TestAgendaText.moc"
