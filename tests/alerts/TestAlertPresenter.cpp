#include "alerts/AlertDesk.h"
#include "alerts/AlertPresenter.h"
#include "alerts/CardPlacement.h"
#include "support/EnglishTexts.h"
#include <QQuickItem>
#include <QQuickView>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

struct Desk : AlertDesk
{
    Desk() { appearance.lessMotion = true; }

    void present(const QStringList &ids)
    {
        for (const QString &id : ids)
            presenter->present(meeting(id, 55));
        settle();
    }

    /// What is on the screen, from the top.
    [[nodiscard]] QList<QWindow *> visible() const
    {
        QList<QWindow *> all;
        for (const auto &[window, kind] : windows.prepared) {
            if (window && window->isVisible())
                all.append(window);
        }
        std::ranges::sort(all, {}, &QWindow::y);
        return all;
    }

    [[nodiscard]] QString titles() const
    {
        QStringList titles;
        for (const QWindow *window : visible())
            titles.append(window->title());
        return titles.join(u' ');
    }
};

void collectTexts(QQuickItem *item, QList<QQuickItem *> &texts)
{
    if (!item->isVisible())
        return;
    if (item->inherits("QQuickText"))
        texts.append(item);
    for (QQuickItem *child : item->childItems())
        collectTexts(child, texts);
}

} // namespace

class TestAlertPresenter : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void placesCards_data();
    void placesCards();
    void showsAnyMeetingWithoutOverlap_data();
    void showsAnyMeetingWithoutOverlap();
    void closesTheGapOfADismissedCard_data();
    void closesTheGapOfADismissedCard();
    void cardsWithoutAPlaceWait();
    void withoutStackingTheNewestHidesTheOthers();
    void aPressOutsideDismissesWhatIsShown();
    void cardsGoByThemselvesAndByEscape();
    void cardsThatComeTogetherPlayOneSound();
    void noticesStandForCardsThatCannotBePlaced();

private:
    EnglishTexts m_texts;
};

void TestAlertPresenter::initTestCase()
{
    QTest::failOnWarning(QRegularExpression(u"."_s));
}

void TestAlertPresenter::placesCards_data()
{
    QTest::addColumn<Preferences::ScreenPosition>("position");
    QTest::addColumn<int>("offset");
    QTest::addColumn<QPoint>("expected");
    using enum Preferences::ScreenPosition;
    // a card of 400 by 180 on a screen to the right of another, under a panel of 30
    QTest::newRow("top left") << TopLeft << 0 << QPoint(1016, 46);
    QTest::newRow("top centre") << TopCenter << 0 << QPoint(1520, 46);
    QTest::newRow("top right") << TopRight << 0 << QPoint(2024, 46);
    QTest::newRow("top right, third") << TopRight << 384 << QPoint(2024, 430);
    QTest::newRow("bottom left") << BottomLeft << 0 << QPoint(1016, 704);
    QTest::newRow("bottom centre") << BottomCenter << 0 << QPoint(1520, 704);
    QTest::newRow("bottom right, second") << BottomRight << 192 << QPoint(2024, 512);
}

void TestAlertPresenter::placesCards()
{
    QFETCH(const Preferences::ScreenPosition, position);
    QFETCH(const int, offset);
    QFETCH(const QPoint, expected);
    QCOMPARE(cardOrigin(position, QRect(1000, 30, 1440, 870), QSize(400, 180), offset), expected);
}

void TestAlertPresenter::showsAnyMeetingWithoutOverlap_data()
{
    QTest::addColumn<Meeting>("meeting");
    const auto row = [](const char *name, auto change) {
        Meeting meeting = AlertDesk::meeting(u"Weekly"_s, 55);
        change(meeting);
        QTest::newRow(name) << meeting;
    };
    row("bare", [](Meeting &) { });
    row("all there is", [](Meeting &meeting) {
        meeting.title = u"Wöchentlich 週次定例会議 "_s.repeated(10);
        meeting.location = u"An address that fills two hundred characters, "_s.repeated(4);
        meeting.meetingURL = QUrl(u"https://meet.example.com/a"_s);
        meeting.platform = MeetingPlatform::other(u"a-long-name."_s.repeated(8) + u"example.com"_s);
        meeting.canonicalURL = QUrl(u"https://calendar.example.com/a"_s);
        meeting.calendarColorHex = u"#4dbed1"_s;
        meeting.end += std::chrono::hours(1000);
    });
    row("no space to break at", [](Meeting &meeting) { meeting.title = u"W"_s.repeated(140); });
    row("markup", [](Meeting &meeting) { meeting.title = u"<img src=x><h1>Big</h1>"_s; });
    row("right to left", [](Meeting &meeting) {
        meeting.title = u"اجتماع الفريق الأسبوعي 👩🏽‍💻"_s;
    });
    row("zero length", [](Meeting &meeting) { meeting.end = meeting.start; });
}

void TestAlertPresenter::showsAnyMeetingWithoutOverlap()
{
    QFETCH(const Meeting, meeting);
    Desk desk;
    desk.presenter->present(meeting);
    Desk::settle();
    QCOMPARE(desk.visible().size(), 1);
    const auto *view = qobject_cast<QQuickView *>(desk.visible().constFirst());
    QCOMPARE(view->width(), 416);
    const QRectF body = view->rootObject()->property("body").toRectF();
    QCOMPARE(body, QRectF(28, 18, 360, view->height() - 56));
    QVERIFY(body.height() < 320);
    QCOMPARE(desk.windows.inputRegions.value(view).boundingRect(), body.toRect());

    QList<QQuickItem *> texts;
    collectTexts(view->rootObject(), texts);
    QList<QRectF> drawn;
    for (const QQuickItem *text : texts) {
        QCOMPARE(text->property("textFormat").toInt(), int(Qt::PlainText));
        const QRectF rect = text->mapRectToScene(text->boundingRect());
        QVERIFY2(body.adjusted(16, 8, -15, -8).contains(rect), qPrintable(text->property("text").toString()));
        QVERIFY(std::ranges::none_of(
            drawn, [&](const QRectF &other) { return other.adjusted(1, 1, -1, -1).intersects(rect); }));
        drawn.append(rect);
    }
    QVERIFY(std::ranges::any_of(
        texts, [&](const QQuickItem *text) { return text->property("text").toString() == meeting.title; }));
    if (meeting.meetingURL) // nobody joins without being told where
        QVERIFY(std::ranges::any_of(texts, [&](const QQuickItem *text) {
            return text->property("text").toString().contains(meeting.platform.displayName());
        }));
}

void TestAlertPresenter::closesTheGapOfADismissedCard_data()
{
    QTest::addColumn<bool>("moves");
    QTest::newRow("moving") << true;
    QTest::newRow("at once") << false;
}

void TestAlertPresenter::closesTheGapOfADismissedCard()
{
    QFETCH(const bool, moves);
    Desk desk;
    desk.appearance.lessMotion = !moves;
    desk.present({ u"A"_s, u"B"_s, u"C"_s, u"B"_s });
    QCOMPARE(desk.titles(), u"A B C"_s);
    const QList<QWindow *> cards = desk.visible();
    const int step = cards[0]->height() + 12;
    QCOMPARE(cards[0]->position(), QPoint(1920 - 416 - 16, 28 + 16));
    QCOMPARE(cards[2]->y(), cards[0]->y() + 2 * step);

    desk.presenter->dismiss(u"A"_s);
    QCOMPARE(cards[2]->y() == 44 + step, !moves);
    QTRY_COMPARE(cards[2]->y(), 44 + step);
    QCOMPARE(cards[1]->y(), 44);
    QCOMPARE(desk.titles(), u"B C"_s);
}

void TestAlertPresenter::cardsWithoutAPlaceWait()
{
    Desk desk;
    QStringList ids;
    for (int index = 0; index < 60; ++index)
        ids.append(QString::number(index));
    desk.present(ids);
    const auto shown = desk.visible().size();
    QVERIFY(shown >= 3 && shown <= 6);
    QCOMPARE(desk.titles(), ids.mid(0, shown).join(u' '));
    QVERIFY(desk.windows.prepared.size() <= shown + 1);
    QCOMPARE(desk.presenter->activeIDs(), ids);

    desk.presenter->dismiss(u"1"_s);
    Desk::settle();
    ids.removeAt(1);
    QCOMPARE(desk.titles(), ids.mid(0, shown).join(u' '));

    desk.screens.setFrames({}, {});
    QCOMPARE(desk.titles(), u""_s);
    desk.screens.setFrames(QRect(0, 0, 320, 120), QRect(0, 0, 320, 120));
    QCOMPARE(desk.titles(), u"0"_s); // too small for any, but one is shown
    desk.screens.setFrames(QRect(0, 0, 1920, 1080), QRect(0, 28, 1920, 1052));
    QCOMPARE(desk.titles(), ids.mid(0, shown).join(u' '));
    desk.presenter->dismissAll();
    QCOMPARE(desk.titles(), u""_s);
}

void TestAlertPresenter::withoutStackingTheNewestHidesTheOthers()
{
    Desk desk;
    desk.preferences.setStackSimultaneousAlerts(false);
    desk.present({ u"A"_s, u"B"_s });
    QCOMPARE(desk.titles(), u"B"_s);
    QCOMPARE(desk.visible().constFirst()->y(), 44);
    desk.presenter->dismiss(u"B"_s);
    QCOMPARE(desk.titles(), u"A"_s);
    desk.present({ u"C"_s });
    desk.preferences.setStackSimultaneousAlerts(true);
    QCOMPARE(desk.titles(), u"A C"_s);
}

void TestAlertPresenter::aPressOutsideDismissesWhatIsShown()
{
    Desk desk;
    desk.present({ u"A"_s, u"B"_s });
    QVERIFY(!desk.windows.isWatching);
    desk.preferences.setClickOutsideToDismiss(true);
    desk.windows.press(QPoint(1700, 100));
    QCOMPARE(desk.titles(), u"A B"_s);
    desk.windows.press(QPoint(1920 - 416, 60)); // beside a card, where its shadow falls
    QCOMPARE(desk.titles(), u""_s);
    QVERIFY(!desk.windows.isWatching);
}

void TestAlertPresenter::cardsGoByThemselvesAndByEscape()
{
    Desk desk;
    desk.present({ u"A"_s });
    QWindow *card = desk.visible().constFirst();
    QTest::mouseClick(card, Qt::LeftButton, {}, QPoint(200, 70));
    QCOMPARE(desk.windows.focused.value(0), card);
    card->requestActivate();
    QTRY_COMPARE(QGuiApplication::focusWindow(), card);
    QTest::keyClick(card, Qt::Key_Escape);
    QCOMPARE(desk.titles(), u""_s);

    desk.preferences.setAutoDismissSeconds(1);
    desk.present({ u"C"_s });
    QCOMPARE(desk.titles(), u"C"_s);
    QTRY_COMPARE(desk.titles(), u""_s);
}

void TestAlertPresenter::cardsThatComeTogetherPlayOneSound()
{
    Desk desk;
    desk.preferences.setAlertSoundRaw(u"Ping"_s);
    desk.present({ u"A"_s, u"B"_s });
    QCOMPARE(desk.sounds.played, QStringList { u"Ping"_s });
    desk.present({ u"C"_s });
    QCOMPARE(desk.sounds.played.size(), 2);
    desk.preferences.setPlaySoundOnAlert(false);
    desk.present({ u"D"_s });
    QCOMPARE(desk.sounds.played.size(), 2);
}

void TestAlertPresenter::noticesStandForCardsThatCannotBePlaced()
{
    Desk desk;
    desk.windows.placesWindows = false;
    desk.present({ u"A"_s, u"B"_s });
    Meeting online = Desk::meeting(u"C"_s, 55);
    online.meetingURL = QUrl(u"https://meet.example.com/c"_s);
    online.platform = MeetingPlatform::Kind::Zoom;
    desk.presenter->present(online);
    QCOMPARE(desk.notifications.open.size(), 3);
    const auto notice = desk.notifications.open.value(u"C"_s);
    QVERIFY(notice.isCritical);
    QCOMPARE(notice.actions,
             (QList<std::pair<QString, QString>> { { u"join"_s, u"Join Zoom"_s },
                                                   { u"dismiss"_s, u"Dismiss"_s } }));

    desk.notifications.dismiss(u"A"_s);
    desk.notifications.choose(u"C"_s, u"join"_s);
    QTRY_COMPARE(desk.urls.opened, QList { *online.meetingURL });
    QCOMPARE(desk.presenter->activeIDs(), QStringList { u"B"_s });
    desk.presenter->dismiss(u"B"_s);
    QVERIFY(desk.notifications.open.isEmpty());
    QVERIFY(desk.windows.prepared.isEmpty());

    desk.notifications.isAvailable = false;
    desk.present({ u"D"_s });
    QCOMPARE(desk.presenter->activeIDs(), QStringList());
}

} // namespace kestrel

QTEST_MAIN(kestrel::TestAlertPresenter)
#include "TestAlertPresenter.moc"
