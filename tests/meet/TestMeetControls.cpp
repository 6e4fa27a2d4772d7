#include "hotkeys/HotkeyDispatcher.h"
#include "meet/MeetControlsController.h"
#include "meet/MeetHUDContent.h"
#include "meet/MeetHUDPresenter.h"
#include "meet/MeetState.h"
#include "meet/protocol/MeetTabMarker.h"
#include "meet/protocol/StateScript.h"
#include "preferences/Preferences.h"
#include "support/EnglishTexts.h"
#include "support/FakeAppearance.h"
#include "support/FakeFloatingWindows.h"
#include "support/FakeHelperChannel.h"
#include "support/FakeModalNotice.h"
#include "support/FakePreferenceStore.h"
#include "support/FakeScreens.h"
#include "support/FakeShortcutBackend.h"
#include "support/WarningCount.h"
#include "ui/QuickScene.h"
#include "ui/Theme.h"
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

using ScriptAnswer = std::expected<HelperScriptReply, HelperError>;

ScriptAnswer returned(const QString &result)
{
    return HelperScriptReply { true, result, {} };
}

ScriptAnswer failed(const QString &error)
{
    return HelperScriptReply { false, {}, error };
}

const ScriptAnswer noTab = HelperScriptReply { false, {}, {} };

/// What each test does not ask for never comes.
constexpr MeetControlsTimes never { 1h, 1h, 1h, 1h };

struct Desk
{
    explicit Desk(MeetControlsTimes given = never)
        : times(given)
    {
    }

    [[nodiscard]] QStringList scripts() const
    {
        QStringList all;
        for (const auto &call : helper.executed)
            all.append(call.jsSource);
        return all;
    }

    void clearAllShortcuts()
    {
        for (const auto &row : hotkeyActions())
            preferences.setHotkey({}, row.action);
    }

    MeetControlsTimes times;
    FakePreferenceStore store;
    Preferences preferences { store };
    MeetState state;
    FakeHelperChannel helper;
    FakeShortcutBackend backend;
    HotkeyDispatcher dispatcher { backend };
    FakeAppearance appearance;
    Theme theme { appearance };
    QuickScene scene;
    FakeFloatingWindows windows;
    FakeScreens screens;
    MeetHUDPresenter hud { scene, windows, screens, theme, { 0ms, 1h, 0ms } };
    FakeModalNotice notice;
    int popovers = 0;
    std::unique_ptr<MeetControlsController> controller = std::make_unique<MeetControlsController>(
        preferences, state, helper, dispatcher, hud, notice, store, [this] { ++popovers; }, times);
};

/// A turn of the event loop for each of the timers and queued calls that wait.
void turn()
{
    for (int i = 0; i < 10; ++i)
        QCoreApplication::processEvents();
}

} // namespace

class TestMeetControls final : public QObject
{
    Q_OBJECT

    EnglishTexts m_texts;

private Q_SLOTS:
    void answersOfActions_data()
    {
        QTest::addColumn<HotkeyAction>("action");
        QTest::addColumn<ScriptAnswer>("answer");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("popovers");
        QTest::addColumn<bool>("closes");
        const auto row = [](const char *name, HotkeyAction action, const ScriptAnswer &answer,
                            const QString &shown, int popovers = 0, bool closes = false) {
            QTest::newRow(name) << action << answer << shown << popovers << closes;
        };
        row("microphone off now", HotkeyAction::meetMute, returned(u"ok:Turn OFF microphone"_s),
            u"mic.slash"_s);
        row("microphone on now", HotkeyAction::meetMute, returned(u"ok:activar micrófono"_s), u"mic"_s);
        row("no button", HotkeyAction::meetMute, returned(u"miss"_s), u"mic"_s);
        row("a reaction without a tray", HotkeyAction::meetReactHeart, returned(u"no-trigger"_s), u"💖"_s);
        row("leaving", HotkeyAction::meetLeave, returned(u"ok:leave call"_s), u"phone.down.fill"_s, 0, true);
        row("leaving without a button", HotkeyAction::meetLeave, returned(u"miss"_s), u"phone.down.fill"_s, 0,
            true);
        row("leaving without a tab", HotkeyAction::meetLeave, noTab, {}, 1);
        row("no tab", HotkeyAction::meetMute, noTab, {}, 1);
        row("an error", HotkeyAction::meetLeave, failed(u"page is busy"_s), {});
        row("an error beside ok", HotkeyAction::meetMute,
            HelperScriptReply { true, u"ok:turn off microphone"_s, u"late"_s }, {});
        row("no helper", HotkeyAction::meetMute,
            std::unexpected(HelperError { HelperError::Kind::Unreachable, u"gone"_s }), {});
        row("no such action", HotkeyAction::join, returned({}), {});
    }

    void answersOfActions()
    {
        QFETCH(HotkeyAction, action);
        QFETCH(ScriptAnswer, answer);
        QFETCH(QString, shown);
        QFETCH(int, popovers);
        QFETCH(bool, closes);
        Desk desk({ 1h, 1h, 1h, 0ms });
        desk.helper.scriptAnswer = answer;
        desk.controller->dispatch(action);
        turn();
        QCOMPARE(desk.helper.executed.size(), action == HotkeyAction::join ? 0 : 1);
        QCOMPARE(desk.hud.symbol() + desk.hud.emoji(), shown);
        QCOMPARE(desk.hud.isShown(), !shown.isEmpty());
        QCOMPARE(desk.popovers, popovers);
        QCOMPARE(desk.helper.closed, closes ? QStringList(meetTabMarker) : QStringList());
        QVERIFY(desk.notice.asked.isEmpty());
    }

    void theHudShowsTheStateAfterTheAction_data()
    {
        QTest::addColumn<HotkeyAction>("action");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("shown");
        const auto row = [](HotkeyAction action, const QString &before, const QString &shown) {
            QTest::addRow("%s: %s", kestrel::row(action).rawValue.data(), qPrintable(before))
                << action << before << shown;
        };
        row(HotkeyAction::meetMute, u"desactivar micrófono"_s, u"mic.slash"_s);
        row(HotkeyAction::meetVideo, u"turn off camera"_s, u"video.slash"_s);
        row(HotkeyAction::meetVideo, u"DESACTIVAR CÁMARA"_s, u"video.slash"_s);
        row(HotkeyAction::meetHand, u"raise hand (ctrl+alt+h)"_s, u"hand.raised.fill"_s);
        row(HotkeyAction::meetHand, u"bajar la mano"_s, u"hand.raised"_s);
        row(HotkeyAction::meetShareScreen, u"presentar ahora"_s, u"rectangle.on.rectangle.fill"_s);
        row(HotkeyAction::meetShareScreen, u"stop presenting"_s, u"rectangle.on.rectangle"_s);
        row(HotkeyAction::meetReactLaugh, {}, u"😂"_s);
        row(HotkeyAction::join, u"turn off microphone"_s, {});
    }

    void theHudShowsTheStateAfterTheAction()
    {
        QFETCH(HotkeyAction, action);
        QFETCH(QString, before);
        QFETCH(QString, shown);
        const MeetHUDContent content = hudContent(action, before);
        QCOMPARE(content.symbol + content.emoji, shown);
    }

    void pollsKeepTheState_data()
    {
        QTest::addColumn<ScriptAnswer>("answer");
        QTest::addColumn<QList<bool>>("state"); // in a meeting, microphone, camera, hand, sharing
        const QList<bool> isOut { false, false, true, true, false };
        const auto json = [](const char *text) { return returned(QString::fromUtf8(text)); };
        QTest::newRow("a call") << json(R"({"found":true,"mic":true,"cam":false,"hand":false,"share":true})")
                                << QList<bool> { true, true, false, false, true };
        QTest::newRow("no buttons") << json(
            R"({"found":false,"mic":true,"cam":true,"hand":true,"share":false})")
                                    << QList<bool> { false, true, true, true, false };
        QTest::newRow("a member too few")
            << json(R"({"found":true,"mic":true,"cam":true,"hand":true})") << isOut;
        QTest::newRow("a member too many")
            << json(R"({"found":true,"mic":true,"cam":true,"hand":true,"share":true,"more":true})") << isOut;
        QTest::newRow("not all boolean")
            << json(R"({"found":true,"mic":true,"cam":true,"hand":true,"share":1})") << isOut;
        QTest::newRow("a list") << json("[true,true,true,true,true]") << isOut;
        QTest::newRow("no JSON") << json("null,") << isOut;
        QTest::newRow("no result") << ScriptAnswer(HelperScriptReply { true, {}, {} }) << isOut;
        QTest::newRow("no tab") << noTab << isOut;
        QTest::newRow("an error") << failed(u"Allow User Scripts is off"_s) << isOut;
        QTest::newRow("no helper") << ScriptAnswer(std::unexpected(HelperError {})) << isOut;
    }

    void pollsKeepTheState()
    {
        QFETCH(ScriptAnswer, answer);
        QFETCH(QList<bool>, state);
        Desk desk({ 0ms, 1h, 1h, 1h });
        desk.clearAllShortcuts();
        desk.helper.scriptAnswer =
            returned(uR"({"found":true,"mic":false,"cam":true,"hand":true,"share":false})"_s);
        desk.controller->start();
        turn();
        QVERIFY(desk.state.inMeeting());
        desk.helper.scriptAnswer = answer;
        desk.controller->start();
        turn();
        QCOMPARE(desk.scripts(), QStringList(2, stateScript.toString()));
        QVERIFY(!desk.helper.executed.last().activate);
        QCOMPARE(QList<bool>({ desk.state.inMeeting(), desk.state.micOn(), desk.state.cameraOn(),
                               desk.state.handRaised(), desk.state.sharing() }),
                 state);
        QVERIFY(desk.notice.asked.isEmpty());
    }

    void aTroubleIsLoggedWhenItBeginsAndNotAtEveryPoll()
    {
        Desk desk({ 0ms, 0ms, 1h, 1h });
        const auto gone = [](const QString &why) {
            return std::unexpected(HelperError { HelperError::Kind::Unreachable, why });
        };
        const auto linesAfterPolls = [&desk](const ScriptAnswer &answer) {
            desk.helper.scriptAnswer = answer;
            const WarningCount lines;
            const auto polls = desk.helper.executed.size();
            while (desk.helper.executed.size() < polls + 5)
                QCoreApplication::processEvents();
            return WarningCount::seen;
        };
        desk.controller->start();
        QCOMPARE(linesAfterPolls(gone(u"missing"_s)), 2); // of the helper, and of the poll
        QCOMPARE(linesAfterPolls(gone(u"missing"_s)), 0);
        QCOMPARE(linesAfterPolls(gone(u"crashed"_s)), 1);
        QCOMPARE(linesAfterPolls(noTab), 0);
        QCOMPARE(linesAfterPolls(gone(u"missing"_s)), 2);
        desk.controller->stop();
        turn();
    }

    void aBrowserThatHangsIsAskedOnce()
    {
        Desk desk({ 0ms, 0ms, 1h, 1h });
        desk.helper.isHeld = true;
        desk.controller->start();
        turn();
        QCOMPARE(desk.helper.executed.size(), 1);
        desk.helper.release();
        QTRY_VERIFY(desk.helper.executed.size() > 2);
    }

    void anActionIsFollowedByAPollOfItsOwn()
    {
        Desk desk({ 0ms, 1h, 0ms, 1h });
        desk.helper.isHeld = true;
        desk.controller->start();
        turn(); // this poll's answer is from before the action
        desk.helper.isHeld = false;
        desk.controller->dispatch(HotkeyAction::meetMute);
        turn();
        QCOMPARE(desk.helper.executed.size(), 2);
        desk.helper.release();
        QTRY_COMPARE(desk.helper.executed.size(), 3);
        QCOMPARE(desk.scripts().last(), stateScript);
        desk.controller->dispatch(HotkeyAction::meetMute);
        turn();
        QCOMPARE(desk.helper.executed.size(), 5);
    }

    void stoppedControlsAskNoMore()
    {
        Desk desk({ 0ms, 0ms, 0ms, 1h });
        desk.helper.scriptAnswer =
            returned(uR"({"found":true,"mic":false,"cam":true,"hand":true,"share":false})"_s);
        desk.controller->start();
        QTRY_VERIFY(desk.state.inMeeting());
        desk.helper.isHeld = true;
        turn();
        desk.controller->stop();
        QVERIFY(!desk.state.inMeeting());
        const qsizetype before = desk.helper.executed.size();
        desk.helper.release();
        turn();
        QVERIFY(desk.state.inMeeting()); // what was under way
        desk.controller->dispatch(HotkeyAction::meetMute);
        turn();
        QCOMPARE(desk.helper.executed.size(), before + 1);
    }

    void theBrowsersSettingIsExplainedOnce_data()
    {
        QTest::addColumn<QString>("error");
        QTest::addColumn<int>("notices");
        QTest::newRow("ours") << u"Allow User Scripts is off"_s << 1;
        QTest::newRow("in any letter case") << u"allow user SCRIPTS is off."_s << 1;
        QTest::newRow("AppleScript") << u"Error: Executing JavaScript through AppleScript is turned off"_s
                                     << 1;
        QTest::newRow("from Apple Events") << u"Allow JavaScript from Apple Events"_s << 1;
        QTest::newRow("through Apple Events") << u"JAVASCRIPT THROUGH APPLE EVENTS"_s << 1;
        QTest::newRow("another error") << u"JavaScript error"_s << 0;
    }

    void theBrowsersSettingIsExplainedOnce()
    {
        QFETCH(QString, error);
        QFETCH(int, notices);
        Desk desk;
        desk.helper.scriptAnswer = failed(error);
        desk.controller->dispatch(HotkeyAction::meetMute);
        desk.controller->dispatch(HotkeyAction::meetFocus);
        turn();
        QCOMPARE(desk.notice.asked.size(), notices);
        QCOMPARE(desk.store.boolean(u"MeetControls.chromeFlagAlertShown"_s).has_value(), notices == 1);
    }

    void answersMayComeAfterTheEnd()
    {
        Desk desk({ 0ms, 0ms, 0ms, 0ms });
        desk.helper.isHeld = true;
        desk.helper.scriptAnswer = noTab;
        desk.state.setInMeeting(true);
        desk.controller->start();
        desk.controller->dispatch(HotkeyAction::meetLeave);
        turn();
        QCOMPARE(desk.helper.executed.size(), 2);
        desk.controller.reset();
        desk.helper.release();
        turn();
        QCOMPARE(desk.popovers, 0);
        QVERIFY(desk.state.inMeeting());
        desk.backend.press(2);
        turn();
        QCOMPARE(desk.helper.executed.size(), 2);
    }
};

} // namespace kestrel

QTEST_MAIN(kestrel::TestMeetControls)
#include "TestMeetControls.moc"
