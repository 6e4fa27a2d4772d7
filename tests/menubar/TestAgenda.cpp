#include "menubar/AgendaPopover.h"
#include "menubar/Desk.h"
#include "ui/QuickScene.h"
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickView>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>

using namespace kestrel;
using namespace Qt::StringLiterals;

class TestAgenda : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void sortsTheDayIntoSections_data();
    void sortsTheDayIntoSections();
    void keepsWhatStaysInTheList_data();
    void keepsWhatStaysInTheList();
    void countsWhatIsLeftOfARunningMeeting();
    void opensAtThePanelsEdge_data();
    void opensAtThePanelsEdge();
    void drawsWithoutAWarning_data();
    void drawsWithoutAWarning();
    void worksFromTheKeyboard();
    void opensClosesAndStandsStill();
};

namespace {

QtMessageHandler formerHandler = nullptr;
QStringList complaints;

void noteComplaint(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    // Qt 6.4's own, when rows go that it was about to make
    const bool isQts = message.startsWith("DelegateModel::cancel"_L1);
    if (type == QtWarningMsg && !isQts)
        complaints.append(message);
    formerHandler(type, context, message);
}

QStringList ids(MeetingListModel *model)
{
    QStringList found;
    for (int row = 0; row < model->count(); ++row)
        found.append(model->index(row).data(MeetingListModel::Item).value<MeetingItem *>()->meeting().id);
    return found;
}

void settle()
{
    for (int turn = 0; turn < 10; ++turn)
        QCoreApplication::processEvents();
}

/// The agenda's window.
struct Window
{
    explicit Window(Desk &desk)
        : popover(scene, desk.windows, desk.screens, desk.agenda, { QUrl(), &popover })
    {
        popover.show();
        settle();
    }
    [[nodiscard]] QQuickView *view() const
    {
        const auto windows = QGuiApplication::topLevelWindows();
        return windows.isEmpty() ? nullptr : qobject_cast<QQuickView *>(windows.last());
    }
    [[nodiscard]] QString focused() const
    {
        const QQuickItem *item = view()->activeFocusItem();
        const auto *meeting = item->property("item").value<MeetingItem *>();
        return QString::fromLatin1(item->metaObject()->className()).section(u'_', 0, 0)
            + (meeting ? u' ' + meeting->meeting().id : u""_s);
    }

    QuickScene scene;
    AgendaPopover popover;
};

} // namespace

void TestAgenda::sortsTheDayIntoSections_data()
{
    QTest::addColumn<QList<QList<double>>>("meetings"); // start and end in minutes from noon
    QTest::addColumn<int>("tolerance");
    QTest::addColumn<QStringList>("cards");
    QTest::addColumn<QStringList>("later");
    QTest::addColumn<bool>("isEmpty");
    QTest::addColumn<int>("height");
    using Rows = QList<QList<double>>;
    QTest::newRow("nothing") << Rows() << 0 << QStringList() << QStringList() << true << 8;
    QTest::newRow("one in progress and nothing after it")
        << Rows { { -10, 10 } } << 0 << QStringList { u"0"_s } << QStringList() << true << 8;
    QTest::newRow("running by end, next, rest")
        << Rows { { -20, 30 }, { -10, 10 }, { 20, 40 }, { 50, 60 } } << 0
        << QStringList { u"1"_s, u"0"_s, u"2"_s } << QStringList { u"3"_s } << false << 68;
    QTest::newRow("two within the tolerance")
        << Rows { { 10, 30 }, { 11, 30 }, { 12, 30 } } << 60 << QStringList { u"0"_s, u"1"_s }
        << QStringList { u"2"_s } << false << 68;
    QTest::newRow("only the same instant without one")
        << Rows { { 10, 30 }, { 10, 30 }, { 10.02, 30 } } << 0 << QStringList { u"0"_s, u"1"_s }
        << QStringList { u"2"_s } << false << 68;
    QTest::newRow("tomorrow is next but not today")
        << Rows { { 24 * 60, 25 * 60 }, { 25 * 60, 26 * 60 } } << 0 << QStringList { u"0"_s } << QStringList()
        << false << 8;
    QTest::newRow("over, and of no length")
        << Rows { { -30, -20 }, { 0, 0 }, { 5, 5 }, { 9, 10 } } << 0 << QStringList { u"2"_s }
        << QStringList { u"3"_s } << false << 68;
    QTest::newRow("over before it would start")
        << Rows { { 5, -3 }, { 9, 10 } } << 0 << QStringList { u"1"_s } << QStringList() << false << 8;
    Rows many { { 1, 2 } };
    QStringList rest;
    for (int row = 1; row <= 10; ++row) {
        many.append({ 10.0 + row, 30 });
        rest.append(QString::number(row));
    }
    QTest::newRow("ten later ones") << many << 0 << QStringList { u"0"_s } << rest << false << 540;
}

void TestAgenda::sortsTheDayIntoSections()
{
    QFETCH(QList<QList<double>>, meetings);
    QFETCH(int, tolerance);
    Desk desk;
    desk.preferences.setHighlightToleranceSeconds(tolerance);
    QList<Meeting> made;
    for (const QList<double> &row : meetings)
        made.append(desk.meeting(QString::number(made.size()), row.at(0), row.at(1)));
    desk.show(made);
    desk.agenda.setActive(true);
    QTEST(ids(desk.agenda.cards()), "cards");
    QTEST(ids(desk.agenda.laterToday()), "later");
    QTEST(desk.agenda.isEmpty(), "isEmpty");
    QTEST(desk.agenda.laterTodayHeight(), "height");
}

void TestAgenda::keepsWhatStaysInTheList_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("one goes") << u"abc"_s << u"ac"_s;
    QTest::newRow("one comes") << u"ac"_s << u"abc"_s;
    QTest::newRow("turned round") << u"abcd"_s << u"dcba"_s;
    QTest::newRow("all others") << u"abc"_s << u"xyz"_s;
    QTest::newRow("two under one name, then one") << u"abab"_s << u"ba"_s;
    QTest::newRow("emptied") << u"ab"_s << u""_s;
}

void TestAgenda::keepsWhatStaysInTheList()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    Desk desk;
    MeetingListModel list(desk.opener, desk.clock);
    const auto show = [&](const QString &letters) {
        QList<Meeting> meetings;
        for (const QChar letter : letters)
            meetings.append(desk.meeting(letter, 1, 2));
        list.show({}, meetings, desk.clock.now());
    };
    const auto itemOf = [&](int row) {
        return list.index(row).data(MeetingListModel::Item).value<QObject *>();
    };
    show(before);
    QMap<QString, QObject *> items;
    for (int row = list.count() - 1; row >= 0; --row)
        items.insert(before.at(row), itemOf(row));

    show(after);
    QCOMPARE(ids(&list).join(QString()), after);
    for (int row = 0; row < list.count(); ++row) {
        if (before.count(after.at(row)) == 1)
            QCOMPARE(itemOf(row), items.value(after.at(row)));
    }
}

void TestAgenda::countsWhatIsLeftOfARunningMeeting()
{
    Desk desk;
    desk.show({ desk.meeting(u"a"_s, -15, 45) });
    desk.agenda.setActive(true);
    const auto *progress =
        desk.agenda.cards()->index(0).data(MeetingListModel::Progress).value<OngoingProgress *>();
    QVERIFY(progress);
    QCOMPARE(progress->fraction(), 0.25);
    QCOMPARE(progress->minutesLeft(), u"45"_s);
    QCOMPARE(progress->accessibleText(), u"45 minutes left"_s);

    desk.clock.setNow(desk.clock.now() + std::chrono::seconds(44 * 60 + 1));
    desk.agenda.retranslate();
    QCOMPARE(progress->accessibleText(), u"0 minutes left"_s);
}

void TestAgenda::opensAtThePanelsEdge_data()
{
    QTest::addColumn<PopoverPlace>("place");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPoint>("topLeft");
    const QRect above(0, 28, 1920, 1052);
    const QRect below(1920, 0, 1920, 1040);
    const QSize size(360, 500);
    QTest::newRow("under a panel above") << PopoverPlace::at({ 1000, 14 }, above) << size << QPoint(820, 32);
    QTest::newRow("at the right end") << PopoverPlace::at({ 1900, 14 }, above) << size << QPoint(1556, 32);
    QTest::newRow("over a panel below, on the second screen")
        << PopoverPlace::at({ 1930, 1060 }, below) << size << QPoint(1924, 536);
    QTest::newRow("higher than the screen")
        << PopoverPlace::at({ 3000, 1060 }, below) << QSize(360, 2000) << QPoint(2820, 4);
    QTest::newRow("wider than the screen")
        << PopoverPlace::at({ 100, 0 }, { 0, 0, 200, 200 }) << size << QPoint(4, 4);
    QTest::newRow("without a click, panel below")
        << PopoverPlace::inCorner({ 1920, 0, 1920, 1080 }, below) << size << QPoint(3476, 536);
    QTest::newRow("without a click, no panel")
        << PopoverPlace::inCorner({ 0, 0, 800, 600 }, { 0, 0, 800, 600 }) << size << QPoint(436, 4);
}

void TestAgenda::opensAtThePanelsEdge()
{
    QFETCH(PopoverPlace, place);
    QFETCH(QSize, size);
    QTEST(place.topLeft(size), "topLeft");
}

void TestAgenda::drawsWithoutAWarning_data()
{
    QTest::addColumn<int>("cards");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("hasAccount");
    QTest::newRow("no account") << 0 << 0 << u""_s << false;
    QTest::newRow("no meeting") << 0 << 0 << u""_s << true;
    QTest::newRow("a few") << 2 << 3 << u"Planning"_s << true;
    QTest::newRow("sixty at once") << 60 << 0 << u"<b>All</b> at once"_s << true;
    QTest::newRow("two hundred later") << 1 << 200 << QString(140, u'W') << true;
}

void TestAgenda::drawsWithoutAWarning()
{
    QFETCH(int, cards);
    QFETCH(int, rows);
    QFETCH(QString, title);
    QFETCH(bool, hasAccount);
    Desk desk;
    desk.screens.setFrames({ 0, 0, 1280, 800 }, { 0, 28, 1280, 772 });
    if (!hasAccount)
        desk.registry.remove(desk.account);
    QList<Meeting> meetings { desk.meeting(u"running"_s, -10, 10) };
    for (int number = 0; number < cards + rows; ++number) {
        meetings.append(desk.meeting(QString::number(number), number < cards ? 5 : 30, 60));
        meetings.last().title = title;
        meetings.last().location = title;
        meetings.last().attendees.resize(200);
        meetings.last().canonicalURL = QUrl(u"https://calendar.example.com/1"_s);
    }
    if (cards > 0)
        desk.show(meetings);

    complaints.clear();
    formerHandler = qInstallMessageHandler(noteComplaint);
    const auto restore = qScopeGuard([] { qInstallMessageHandler(formerHandler); });
    {
        const Window window(desk);
        QVERIFY(window.view());
        const int height = window.view()->height();
        QCOMPARE(window.view()->width(), 360);
        QVERIFY2(height > 40 && height <= 764, qPrintable(QString::number(height)));
        const auto items = window.view()->rootObject()->findChildren<QQuickItem *>();
        QVERIFY2(items.size() < 1500, "not every row may have been made");
        for (const QQuickItem *item : items) {
            if (item->inherits("QQuickText"))
                QCOMPARE(item->property("textFormat").toInt(), int(Qt::PlainText));
        }
        // what is shown changes and goes while it is shown
        if (meetings.size() > 1)
            meetings.swapItemsAt(0, 1);
        desk.show(meetings.mid(0, 2));
        settle();
        desk.show({});
        settle();
        const int empty = window.view()->height();
        desk.refreshControl.signedOut = { u"ann+work@example.com"_s };
        Q_EMIT desk.refreshControl.signedOutAccountsChanged();
        settle();
        QVERIFY2(window.view()->height() > empty + 10, "there is a line that says so");
    }
    QCOMPARE(complaints, QStringList());
}

void TestAgenda::worksFromTheKeyboard()
{
    Desk desk;
    QList<Meeting> meetings { desk.meeting(u"running"_s, -10, 10), desk.meeting(u"next"_s, 5, 10),
                              desk.meeting(u"page"_s, 30, 40, u""_s), desk.meeting(u"last"_s, 50, 60) };
    meetings[2].canonicalURL = QUrl(u"https://calendar.example.com/page"_s);
    desk.show(meetings);
    Window window(desk);
    QVERIFY(QTest::qWaitForWindowActive(window.view()));
    const auto press = [&](Qt::Key key) {
        QTest::keyClick(window.view(), key);
        settle();
        return window.focused();
    };

    QCOMPARE(press(Qt::Key_Down), u"HighlightCard running"_s);
    QCOMPARE(press(Qt::Key_Tab), u"JoinButton running"_s);
    QCOMPARE(press(Qt::Key_Down), u"HighlightCard next"_s);
    press(Qt::Key_Return);
    QCOMPARE(press(Qt::Key_Down), u"MeetingRow page"_s);
    press(Qt::Key_Return);
    QCOMPARE(press(Qt::Key_Tab), u"OpenInCalendarButton page"_s);
    QCOMPARE(press(Qt::Key_Down), u"MeetingRow last"_s);
    QCOMPARE(press(Qt::Key_Down), u"MeetingRow last"_s);
    QCOMPARE(press(Qt::Key_Tab), u"JoinButton last"_s);
    press(Qt::Key_Space);
    const QSignalSpy settings(&desk.agenda, &AgendaModel::settingsRequested);
    QCOMPARE(press(Qt::Key_Tab), u"IconButton"_s);
    press(Qt::Key_Return);
    QCOMPARE(settings.count(), 1);
    QCOMPARE(press(Qt::Key_Tab), u"IconButton"_s);
    press(Qt::Key_Return);
    QCOMPARE(desk.refreshControl.started, 1);
    QStringList opened;
    for (const QUrl &url : desk.browser.opened)
        opened.append(url.path());
    QCOMPARE(opened, (QStringList { u"/next"_s, u"/page"_s, u"/last"_s }));

    QTest::keyClick(window.view(), Qt::Key_Escape);
    QVERIFY(!window.popover.isShown());
    QVERIFY(!desk.agenda.isActive());
}

void TestAgenda::opensClosesAndStandsStill()
{
    Desk desk;
    desk.screens.setFrames({ 0, 0, 1280, 800 }, { 0, 0, 1280, 770 });
    desk.screens.pointerPosition = { 1000, 790 };
    desk.show({ desk.meeting(u"a"_s, 5, 10) });
    Window window(desk);
    QCOMPARE(window.view()->geometry().bottomRight(), QPoint(1275, 765));
    window.popover.toggle({});
    QVERIFY(!window.popover.isShown());

    window.popover.toggle({ 1, 1 });
    settle();
    const QRect first = window.view()->geometry();
    QCOMPARE(first.center().x(), 999);
    desk.show({ desk.meeting(u"a"_s, 5, 10), desk.meeting(u"b"_s, 5, 10) });
    settle();
    QVERIFY(window.view()->height() > first.height());
    QCOMPARE(window.view()->geometry().bottom(), first.bottom());

    // the press that closes it is the click that would open it again
    desk.windows.press({ 1000, 790 });
    QVERIFY(!window.popover.isShown());
    window.popover.toggle({});
    QVERIFY(!window.popover.isShown());
    window.popover.toggle({});
    QVERIFY(window.popover.isShown());
}

QTEST_MAIN(TestAgenda)
#include "TestAgenda.moc"
