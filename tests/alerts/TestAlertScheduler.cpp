#include "alerts/AlertDesk.h"
#include "alerts/AlertScheduler.h"
#include "model/EventStore.h"
#include "support/FakeWakeTimer.h"
#include <QTest>
#include <functional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

struct Desk : AlertDesk
{
    std::unique_ptr<EventStore> events = std::make_unique<EventStore>(clock);
    FakeWakeTimer timer;
    std::unique_ptr<AlertScheduler> scheduler;

    explicit Desk(const QList<Meeting> &meetings = {})
    {
        windows.placesWindows = false; // notices are enough to see what is presented
        events->replace(u"a"_s, meetings);
    }

    void start()
    {
        scheduler = std::make_unique<AlertScheduler>(*events, *presenter, preferences, clock, timer);
        settle();
    }

    /// "09:55:00.000 A B": what is presented by now, which is taken away again.
    QString presented()
    {
        settle();
        QStringList words { toInternetDateTimeWithMilliseconds(clock.now()).mid(11, 12) };
        words += presenter->activeIDs();
        presenter->dismissAll();
        return words.join(u' ');
    }

    QString fire()
    {
        timer.fire();
        return presented();
    }

    [[nodiscard]] QString armedFor() const
    {
        return timer.armed ? toInternetDateTimeWithMilliseconds(*timer.armed).mid(11, 12) : u"nothing"_s;
    }
};

} // namespace

class TestAlertScheduler : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void presentsInTheOrderOfThePlan_data();
    void presentsInTheOrderOfThePlan();
    void aLateFirePresentsWhatHasNotEnded_data();
    void aLateFirePresentsWhatHasNotEnded();
    void plansAgainWhenItMust_data();
    void plansAgainWhenItMust();
    void aNewMeetingTakesItsAlertedGroupAlong();
    void anAlertedMeetingThatIsMovedIsNotAlertedAgain();
    void aPlanThatComesBeforeTheTimersWordLosesNoAlert();
    void aClockThatIsSetByADayRepeatsAndLosesNothing();
    void standsStillWithoutStoreOrPresenter();
};

void TestAlertScheduler::presentsInTheOrderOfThePlan_data()
{
    QTest::addColumn<QList<Meeting>>("meetings");
    QTest::addColumn<int>("lead");
    QTest::addColumn<bool>("alertsTwice");
    QTest::addColumn<QStringList>("expected");
    const auto at = [](const QString &id, int minute) { return AlertDesk::meeting(id, minute); };

    QTest::newRow("twice") << QList { at(u"A"_s, 60) } << 5 << true
                           << QStringList { u"09:55:00.000 A"_s, u"09:59:00.000 A"_s };
    QTest::newRow("once") << QList { at(u"A"_s, 60) } << 5 << false << QStringList { u"09:55:00.000 A"_s };
    QTest::newRow("the lead has begun")
        << QList { at(u"A"_s, 53) } << 5 << true << QStringList { u"09:50:00.100 A"_s, u"09:52:00.000 A"_s };
    QTest::newRow("starts now, or has started")
        << QList { at(u"A"_s, 50), at(u"B"_s, 45) } << 5 << true << QStringList();
    QTest::newRow("nothing") << QList<Meeting>() << 5 << true << QStringList();
    QTest::newRow("both due at once")
        << QList { at(u"A"_s, 60) } << 1 << true << QStringList { u"09:59:00.000 A"_s };
    QTest::newRow("one start") << QList { at(u"B"_s, 60), at(u"A"_s, 60) } << 5 << false
                               << QStringList { u"09:55:00.000 B A"_s };
    QTest::newRow("an earlier secondary before a later primary")
        << QList { at(u"A"_s, 60), at(u"B"_s, 56) } << 5 << true
        << QStringList { u"09:51:00.000 B"_s, u"09:55:00.000 B"_s, u"09:55:00.100 A"_s, u"09:59:00.000 A"_s };
    QTest::newRow("an earlier primary before a later secondary, which is dropped")
        << QList { at(u"A"_s, 55), at(u"B"_s, 56) } << 0 << true
        << QStringList { u"09:54:00.000 A"_s, u"09:55:00.000 A"_s, u"09:56:00.000 B"_s };
}

void TestAlertScheduler::presentsInTheOrderOfThePlan()
{
    QFETCH(const QList<Meeting>, meetings);
    QFETCH(const int, lead);
    QFETCH(const bool, alertsTwice);
    QFETCH(const QStringList, expected);
    Desk desk(meetings);
    desk.preferences.setLeadTimeMinutes(lead);
    desk.preferences.setSecondaryAlertOneMinute(alertsTwice);
    desk.start();

    QStringList foreseen;
    for (const AlertScheduler::Fire &fire : desk.scheduler->upcomingFires(10)) {
        QStringList words { toInternetDateTimeWithMilliseconds(fire.date).sliced(11, 12) };
        for (const Meeting &meeting : fire.meetings)
            words += meeting.id;
        foreseen += words.join(u' ');
    }
    QCOMPARE(foreseen, expected);
    QCOMPARE(desk.scheduler->upcomingFires(1).size(), std::min<qsizetype>(expected.size(), 1));

    QStringList presented;
    while (desk.timer.armed && presented.size() < 10) {
        desk.clock.setNow(*desk.timer.armed);
        presented.append(desk.fire());
    }
    QCOMPARE(presented, expected);
}

void TestAlertScheduler::aLateFirePresentsWhatHasNotEnded_data()
{
    QTest::addColumn<int>("minutesLate");
    QTest::addColumn<QString>("expected");
    QTest::newRow("before the start") << 4 << u"09:59:00.000 short none long"_s;
    QTest::newRow("after the start") << 7 << u"10:02:00.000 short long"_s;
    QTest::newRow("after an end") << 10 << u"10:05:00.000 long"_s;
    QTest::newRow("after all ends") << 200 << u"13:15:00.000"_s;
}

void TestAlertScheduler::aLateFirePresentsWhatHasNotEnded()
{
    QFETCH(const int, minutesLate);
    QFETCH(const QString, expected);
    Desk desk(
        { Desk::meeting(u"short"_s, 60, 5), Desk::meeting(u"none"_s, 60, 0), Desk::meeting(u"long"_s, 60) });
    desk.start();
    QCOMPARE(desk.armedFor(), u"09:55:00.000"_s);
    desk.clock.setNow(*desk.timer.armed + std::chrono::minutes(minutesLate));
    QCOMPARE(desk.fire(), expected);
}

void TestAlertScheduler::plansAgainWhenItMust_data()
{
    QTest::addColumn<std::function<void(Desk &)>>("change");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const std::function<void(Desk &)> &change,
                        const QString &expected) { QTest::newRow(name) << change << expected; };
    row(
        "another meeting", [](Desk &desk) { desk.events->replace(u"b"_s, { Desk::meeting(u"B"_s, 59) }); },
        u"09:54:00.000"_s);
    row(
        "the same identifiers",
        [](Desk &desk) { desk.events->replace(u"a"_s, { Desk::meeting(u"A"_s, 90) }); }, u"09:55:00.000"_s);
    row("none left", [](Desk &desk) { desk.events->clear(); }, u"nothing"_s);
    row("a preference", [](Desk &desk) { desk.preferences.setLeadTimeMinutes(7); }, u"09:53:00.000"_s);
    row(
        "a preference beyond reason",
        [](Desk &desk) { desk.preferences.setLeadTimeMinutes(std::numeric_limits<qint64>::max()); },
        u"09:50:00.100"_s);
    row(
        "a clock that was set back",
        [](Desk &desk) {
            desk.clock.setNow(desk.clock.now() - 5min);
            desk.events->replace(u"a"_s, { Desk::meeting(u"A"_s, 52) });
            desk.timer.jump();
        },
        u"09:47:00.000"_s);
}

void TestAlertScheduler::plansAgainWhenItMust()
{
    QFETCH(const std::function<void(Desk &)>, change);
    QFETCH(const QString, expected);
    Desk desk({ Desk::meeting(u"A"_s, 60) });
    desk.start();
    QCOMPARE(desk.armedFor(), u"09:55:00.000"_s);
    change(desk);
    QCOMPARE(desk.armedFor(), u"09:55:00.000"_s); // not inside whoever tells of the change
    Desk::settle();
    QCOMPARE(desk.armedFor(), expected);
}

void TestAlertScheduler::aNewMeetingTakesItsAlertedGroupAlong()
{
    Desk desk({ Desk::meeting(u"A"_s, 60) });
    desk.start();
    desk.clock.setNow(*desk.timer.armed);
    QCOMPARE(desk.fire(), u"09:55:00.000 A"_s);
    desk.events->replace(u"b"_s, { Desk::meeting(u"B"_s, 60) });
    Desk::settle();
    desk.clock.setNow(*desk.timer.armed);
    QCOMPARE(desk.fire(), u"09:55:00.100 A B"_s);
}

void TestAlertScheduler::anAlertedMeetingThatIsMovedIsNotAlertedAgain()
{
    Desk desk({ Desk::meeting(u"A"_s, 60) });
    desk.preferences.setSecondaryAlertOneMinute(false);
    desk.start();
    desk.clock.setNow(*desk.timer.armed);
    QCOMPARE(desk.fire(), u"09:55:00.000 A"_s);
    desk.events->replace(u"a"_s, { Desk::meeting(u"A"_s, 120) });
    desk.scheduler->rearm();
    QCOMPARE(desk.armedFor(), u"nothing"_s);
}

void TestAlertScheduler::aPlanThatComesBeforeTheTimersWordLosesNoAlert()
{
    Desk desk({ Desk::meeting(u"A"_s, 60) });
    desk.start();
    desk.clock.setNow(*desk.timer.armed);
    QCOMPARE(desk.fire(), u"09:55:00.000 A"_s);
    QCOMPARE(desk.armedFor(), u"09:59:00.000"_s);
    desk.clock.setNow(*desk.timer.armed + 3min);
    desk.timer.jump();
    QCOMPARE(desk.presented(), u"10:02:00.000 A"_s);
    QCOMPARE(desk.fire(), u"10:02:00.000"_s);
}

void TestAlertScheduler::aClockThatIsSetByADayRepeatsAndLosesNothing()
{
    Desk desk({ Desk::meeting(u"A"_s, 60) });
    desk.start();
    const auto set = [&desk](std::chrono::hours by) {
        desk.clock.setNow(desk.clock.now() + by);
        desk.timer.jump();
        return desk.presented();
    };
    QCOMPARE(set(24h), u"09:50:00.000"_s); // a meeting of yesterday is no news
    QCOMPARE(desk.armedFor(), u"nothing"_s);
    QCOMPARE(set(-24h), u"09:50:00.000"_s);
    QCOMPARE(desk.armedFor(), u"09:55:00.000"_s);
    desk.clock.setNow(*desk.timer.armed);
    QCOMPARE(desk.fire(), u"09:55:00.000 A"_s);
    QCOMPARE(set(-24h), u"09:55:00.000"_s);
    desk.clock.setNow(*desk.timer.armed);
    QCOMPARE(desk.fire(), u"09:59:00.000 A"_s); // the one-minute alert alone
    QCOMPARE(desk.armedFor(), u"nothing"_s);
}

void TestAlertScheduler::standsStillWithoutStoreOrPresenter()
{
    for (const bool losesStore : { true, false }) {
        Desk desk({ Desk::meeting(u"A"_s, 60) });
        desk.start();
        if (losesStore)
            desk.events.reset();
        else
            desk.presenter.reset();
        desk.scheduler->rearm();
        QCOMPARE(desk.armedFor(), u"nothing"_s);
    }
}

} // namespace kestrel

QTEST_MAIN(kestrel::TestAlertScheduler)
#include "TestAlertScheduler.moc"
