#include "meet/MeetHUDContent.h"
#include "meet/MeetHUDPresenter.h"
#include "support/EnglishTexts.h"
#include "support/FakeAppearance.h"
#include "support/FakeFloatingWindows.h"
#include "support/FakeScreens.h"
#include "support/WarningCount.h"
#include "ui/QuickScene.h"
#include "ui/Theme.h"
#include <QQuickItem>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

struct Desk
{
    [[nodiscard]] QQuickWindow *window() const
    {
        return windows.shownWindows.isEmpty()
            ? nullptr
            : qobject_cast<QQuickWindow *>(windows.shownWindows.last().first);
    }

    MeetHUDTimes times { 0ms, 1h, 0ms };
    FakeAppearance appearance;
    Theme theme { appearance };
    QuickScene scene;
    FakeFloatingWindows windows;
    FakeScreens screens;
    std::unique_ptr<MeetHUDPresenter> hud;

    MeetHUDPresenter &make()
    {
        hud = std::make_unique<MeetHUDPresenter>(scene, windows, screens, theme, times);
        return *hud;
    }
};

} // namespace

class TestMeetHUD final : public QObject
{
    Q_OBJECT

    EnglishTexts m_texts;

private Q_SLOTS:
    void everyActionIsDrawnAndHasWords_data()
    {
        QTest::addColumn<HotkeyAction>("action");
        QTest::addColumn<QString>("before");
        for (const auto &row : hotkeyActions()) {
            if (row.action != HotkeyAction::join)
                QTest::newRow(row.rawValue.data()) << row.action << QString();
        }
        for (const auto &[action, before] : { std::pair(HotkeyAction::meetMute, u"turn off microphone"_s),
                                              std::pair(HotkeyAction::meetVideo, u"turn off camera"_s),
                                              std::pair(HotkeyAction::meetHand, u"raise hand"_s),
                                              std::pair(HotkeyAction::meetShareScreen, u"present now"_s) })
            QTest::newRow(qPrintable(before)) << action << before;
    }

    void everyActionIsDrawnAndHasWords()
    {
        QFETCH(HotkeyAction, action);
        QFETCH(QString, before);
        Desk desk;
        const WarningCount warnings;
        const MeetHUDContent content = hudContent(action, before);
        desk.make().show(content.symbol, content.emoji);
        QVERIFY(!desk.hud->text().isEmpty());
        QVERIFY(!desk.hud->text().startsWith("meet_hud"_L1));
        const QImage seen = desk.window()->grabWindow();
        int lit = 0;
        int coloured = 0;
        for (int y = 0; y < seen.height(); ++y) {
            for (int x = 0; x < seen.width(); ++x) {
                const QColor color = seen.pixelColor(x, y);
                lit += color.value() > 128 ? 1 : 0;
                coloured += color.value() > 128 && color.saturation() > 128 ? 1 : 0;
                const bool isAtEdge = std::min({ x, y, 179 - x, 179 - y }) < 20;
                QVERIFY2(!isAtEdge || color.value() < 32, "something is cut off");
            }
        }
        QVERIFY(lit > 400);
        QCOMPARE(coloured > 400, !content.emoji.isEmpty());
        QCOMPARE(WarningCount::seen, 0);
    }

    void itStandsInTheMiddleAndIsUsedAgain()
    {
        Desk desk;
        QSignalSpy hidden(&desk.make(), &MeetHUDPresenter::hidden);
        desk.screens.setFrames(QRect(100, 0, 1000, 800), QRect(100, 30, 1000, 770));
        desk.hud->show(u"mic"_s, {});
        QCOMPARE(desk.window()->geometry(), QRect(510, 325, 180, 180));
        desk.screens.setFrames(QRect(0, 0, 500, 500), QRect(0, 0, 500, 500));
        desk.hud->show({}, u"👍"_s);
        QCOMPARE(desk.window()->geometry(), QRect(160, 160, 180, 180));
        QCOMPARE(desk.hud->symbol(), QString());
        QCOMPARE(desk.windows.prepared.size(), 1);
        QCOMPARE(desk.windows.prepared.first().second, FloatingWindows::Kind::Hud);
    }

    void itGoesOnceAndCanComeBack_data()
    {
        QTest::addColumn<bool>("fades");
        QTest::newRow("fading") << true;
        QTest::newRow("at once") << false;
    }

    void itGoesOnceAndCanComeBack()
    {
        QFETCH(bool, fades);
        Desk desk;
        desk.appearance.composited = true;
        desk.appearance.lessMotion = !fades;
        desk.times.fadeIn = 1h;
        desk.times.hideAfter = 0ms;
        QSignalSpy hidden(&desk.make(), &MeetHUDPresenter::hidden);
        desk.hud->show(u"mic"_s, {});
        QCOMPARE(desk.hud->opacity(), fades ? 0.0 : 1.0);
        desk.hud->show(u"mic.slash"_s, {});
        QVERIFY(desk.hud->isShown());
        QTRY_VERIFY(!desk.hud->isShown());
        QCOMPARE(hidden.size(), 1); // the first one's end never came
        desk.hud->show(u"mic"_s, {});
        QVERIFY(desk.hud->isShown());
        QTRY_COMPARE(hidden.size(), 2);
    }

    void nothingShinesThroughWithoutACompositor_data()
    {
        QTest::addColumn<bool>("composited");
        QTest::addColumn<bool>("lessTransparency");
        QTest::addColumn<int>("shinesThrough");
        QTest::newRow("composited") << true << false << 46;
        QTest::newRow("composited, solid surfaces") << true << true << 0;
        QTest::newRow("not composited") << false << false << 0;
    }

    void nothingShinesThroughWithoutACompositor()
    {
        QFETCH(bool, composited);
        QFETCH(bool, lessTransparency);
        QFETCH(int, shinesThrough);
        Desk desk;
        desk.appearance.composited = composited;
        desk.appearance.lessTransparency = lessTransparency;
        desk.make().show(u"mic"_s, {});
        QTRY_COMPARE(desk.hud->opacity(), 1.0);
        desk.window()->setColor(Qt::red); // in the place of what is behind
        const QImage seen = desk.window()->grabWindow();
        QCOMPARE(seen.pixelColor(90, 10), QColor(shinesThrough, 0, 0));
        // without a compositor the window's shape rounds the corner
        QCOMPARE(seen.pixelColor(0, 0), composited ? QColor(Qt::red) : QColor(Qt::black));
        const QRegion shape = desk.windows.inputRegions.value(desk.window());
        QVERIFY(!shape.contains(QPoint(1, 1)) && shape.contains(QPoint(90, 1)));
    }

    void itStaysAwayWhereItHasNoPlace()
    {
        Desk desk;
        desk.windows.placesWindows = false;
        desk.make().show(u"mic"_s, {});
        desk.windows.placesWindows = true;
        desk.screens.setScreens({});
        desk.hud->show(u"mic"_s, {});
        QVERIFY(!desk.hud->isShown());
        QCOMPARE(desk.windows.prepared.size(), 0);
    }
};

} // namespace kestrel

QTEST_MAIN(kestrel::TestMeetHUD)
#include "TestMeetHUD.moc"
