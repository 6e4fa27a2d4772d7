#include "meet/MeetState.h"
#include "menubar/AgendaPopover.h"
#include "menubar/Desk.h"
#include "menubar/MeetingChoice.h"
#include "menubar/MenuBarController.h"
#include "support/FakeStatusItemHost.h"
#include "ui/QuickScene.h"
#include <QSignalSpy>
#include <QTest>

using namespace kestrel;
using namespace Qt::StringLiterals;

class TestMenuBarController : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void countsDownToTheNextMeeting_data();
    void countsDownToTheNextMeeting();
    void showsTheCall_data();
    void showsTheCall();
    void showsOnlyWhatIsNew();
    void choosesTheMeetingToJoin_data();
    void choosesTheMeetingToJoin();
};

namespace {

/// The controller and the panel that it fills.
struct Panel
{
    explicit Panel(Desk &desk)
        : popover(scene, desk.windows, desk.screens, desk.agenda, {})
        , controller(desk.store, desk.preferences, meet, desk.clock, host, popover)
    {
    }

    QuickScene scene;
    MeetState meet;
    FakeStatusItemHost host;
    AgendaPopover popover;
    MenuBarController controller;
};

} // namespace

void TestMenuBarController::countsDownToTheNextMeeting_data()
{
    QTest::addColumn<QList<double>>("seconds");
    QTest::addColumn<QString>("label");
    QTest::newRow("no meeting") << QList<double>() << u""_s;
    QTest::newRow("one in progress does not count") << QList<double> { -60 } << u""_s;
    QTest::newRow("one that starts right now has started") << QList<double> { 0 } << u""_s;
    QTest::newRow("a second") << QList<double> { 1 } << u"in 1 min"_s;
    QTest::newRow("a minute") << QList<double> { 60 } << u"in 1 min"_s;
    QTest::newRow("a minute and a second") << QList<double> { 61 } << u"in 2 min"_s;
    QTest::newRow("nearly an hour") << QList<double> { 3599 } << u"in 1 h 0 min"_s;
    QTest::newRow("the next of several") << QList<double> { -60, 61 * 60, 90 * 60 } << u"in 1 h 1 min"_s;
}

void TestMenuBarController::countsDownToTheNextMeeting()
{
    QFETCH(QList<double>, seconds);
    Desk desk;
    QList<Meeting> meetings;
    for (const double start : seconds)
        meetings.append(desk.meeting(QString::number(start), start / 60, start / 60 + 30));
    desk.show(meetings);
    const Panel panel(desk);
    QTEST(panel.host.state->label, "label");
    QCOMPARE(panel.host.state->symbol, u"chevron.forward.2"_s);
}

void TestMenuBarController::showsTheCall_data()
{
    QTest::addColumn<bool>("hand");
    QTest::addColumn<bool>("sharing");
    QTest::addColumn<bool>("micOn");
    QTest::addColumn<bool>("wantsMic");
    QTest::addColumn<bool>("hasMeeting");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("symbol");
    QTest::newRow("hand and screen") << true << true << true << true << false << u"✋ 🖥️"_s << u"mic.fill"_s;
    QTest::newRow("and a meeting") << true << false << false << true << true << u"✋ in 5 min"_s
                                   << u"mic.slash.fill"_s;
    QTest::newRow("neither") << false << false << true << false << true << u"in 5 min"_s
                             << u"chevron.forward.2"_s;
}

void TestMenuBarController::showsTheCall()
{
    QFETCH(bool, hand);
    QFETCH(bool, sharing);
    QFETCH(bool, micOn);
    QFETCH(bool, wantsMic);
    QFETCH(bool, hasMeeting);
    Desk desk;
    if (hasMeeting)
        desk.show({ desk.meeting(u"a"_s, 5, 30) });
    Panel panel(desk);
    desk.preferences.setShowMeetMicInMenuBar(wantsMic);
    panel.meet.setHandRaised(hand);
    panel.meet.setSharing(sharing);
    panel.meet.setMicOn(micOn);
    panel.meet.setInMeeting(true);
    QCoreApplication::processEvents();
    QTEST(panel.host.state->label, "label");
    QTEST(panel.host.state->symbol, "symbol");
    QVERIFY(!panel.host.state->svg.isEmpty());

    panel.meet.setInMeeting(false);
    QCoreApplication::processEvents();
    QCOMPARE(panel.host.state->label, hasMeeting ? u"in 5 min"_s : u""_s);
}

void TestMenuBarController::showsOnlyWhatIsNew()
{
    Desk desk;
    Panel panel(desk);
    const QSignalSpy joins(&panel.controller, &MenuBarController::joinRequested);
    const auto isJoinEnabled = [&] { return panel.host.state->menu.at(1).isEnabled; };
    QVERIFY(!isJoinEnabled());
    QCOMPARE(panel.host.shows, 1);

    panel.controller.updateTitle();
    QCOMPARE(panel.host.shows, 1);

    desk.show({ desk.meeting(u"a"_s, 5, 30) });
    QCoreApplication::processEvents();
    QCOMPARE(panel.host.shows, 2);
    QVERIFY(isJoinEnabled());
    QCOMPARE(panel.host.state->toolTip, u"Kestrel – in 5 min – a"_s);

    Q_EMIT panel.host.menuTriggered(u"join"_s);
    QCOMPARE(joins.count(), 1);
    const QSignalSpy settings(&panel.controller, &MenuBarController::settingsRequested);
    const auto &menu = panel.host.state->menu;
    Q_EMIT panel.host.menuTriggered(std::ranges::find(menu, u"Settings"_s, &StatusItemMenuEntry::text)->id);
    QCOMPARE(settings.count(), 1);
}

void TestMenuBarController::choosesTheMeetingToJoin_data()
{
    QTest::addColumn<QList<QList<double>>>("meetings");
    QTest::addColumn<int>("chosen");
    // start and end in minutes from now, and 1 for one with a link; the lead is five minutes
    QTest::newRow("none") << QList<QList<double>>() << -1;
    QTest::newRow("what starts soon before what runs")
        << QList<QList<double>> { { -5, 5, 1 }, { 5, 9, 1 } } << 1;
    QTest::newRow("what runs and ends first")
        << QList<QList<double>> { { -9, 9, 1 }, { -5, 5, 1 }, { 5.1, 9, 1 } } << 1;
    QTest::newRow("what starts this instant runs") << QList<QList<double>> { { 0, 9, 1 }, { 6, 9, 1 } } << 0;
    QTest::newRow("links alone count")
        << QList<QList<double>> { { -5, 5, 0 }, { 4, 9, 0 }, { 60, 90, 0 }, { 70, 90, 1 } } << 3;
    QTest::newRow("no link anywhere") << QList<QList<double>> { { -5, 5, 0 }, { 4, 9, 0 } } << -1;
}

void TestMenuBarController::choosesTheMeetingToJoin()
{
    QFETCH(QList<QList<double>>, meetings);
    QFETCH(int, chosen);
    Desk desk;
    QList<Meeting> made;
    for (const QList<double> &row : meetings)
        made.append(desk.meeting(QString::number(made.size()), row.at(0), row.at(1),
                                 row.at(2) > 0 ? u"example.zoom.us"_s : QString()));
    desk.show(made);
    const auto choice = meetingToJoin(desk.store, 300, desk.clock.now());
    QCOMPARE(choice ? choice->id.toInt() : -1, chosen);
}

QTEST_MAIN(TestMenuBarController)
#include "TestMenuBarController.moc"
