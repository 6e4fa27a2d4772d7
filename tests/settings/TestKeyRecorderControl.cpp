#include "hotkeys/GlobalHotkey.h"
#include "hotkeys/HotkeyDispatcher.h"
#include "hotkeys/KeyRecorder.h"
#include "platform/linux/QtKeyMonitor.h"
#include "platform/linux/X11Shortcuts.h"
#include "support/EnglishTexts.h"
#include "support/FakeAppearance.h"
#include "support/Person.h"
#include "ui/QuickScene.h"
#include "ui/Theme.h"
#include <QQuickItem>
#include <QRasterWindow>
#include <QRegularExpression>
#include <QSignalSpy>
#include <optional>

using namespace Qt::StringLiterals;

void qml_register_types_Kestrel_Settings();

namespace kestrel {

namespace {

constexpr Hotkey altShiftM { 46, Modifier::Option | Modifier::Shift };
constexpr Hotkey altShiftL { 37, Modifier::Option | Modifier::Shift };

} // namespace

/// Two recorders in a window, with a real keyboard, a real mouse and real shortcuts.
class TestKeyRecorderControl final : public QObject
{
    Q_OBJECT

    FakeAppearance m_appearance;
    Theme m_theme { m_appearance };
    QuickScene m_scene;
    EnglishTexts m_texts;
    X11Shortcuts m_backend;
    HotkeyDispatcher m_dispatcher { m_backend };
    QtKeyMonitor m_monitor;
    std::optional<KeyRecorder> m_mute;
    std::optional<KeyRecorder> m_leave;
    std::optional<GlobalHotkey> m_shortcut;
    int m_muted = 0;
    std::unique_ptr<QQuickView> m_view;

    [[nodiscard]] QQuickItem *item(const QString &name) const
    {
        return m_view->rootObject()->findChild<QQuickItem *>(name);
    }
    [[nodiscard]] int keysThatPassed() const
    {
        return m_view->rootObject()->property("keysThatPassed").toInt();
    }
    void click(const QString &name) const
    {
        const QPoint place =
            m_view->mapToGlobal(item(name)->mapToScene(item(name)->boundingRect().center()).toPoint());
        xdotool(u"mousemove %1 %2 click 1"_s.arg(place.x()).arg(place.y()));
    }

private Q_SLOTS:
    void initTestCase() { qml_register_types_Kestrel_Settings(); }

    void init()
    {
        QTest::failOnWarning(QRegularExpression(u"."_s));
        m_muted = 0;
        m_mute.emplace(m_dispatcher, m_monitor);
        m_mute->setHotkey(altShiftM);
        m_leave.emplace(m_dispatcher, m_monitor);
        m_leave->setHotkey(altShiftL);
        m_shortcut.emplace(m_dispatcher, u"Meet:mute"_s, altShiftM.keyCode, altShiftM.modifiers, 2,
                           [this] { ++m_muted; });
        m_shortcut->registerHotkey();
        m_view = m_scene.makeView(
            QUrl::fromLocalFile(QFINDTESTDATA("TwoRecorders.qml")),
            { { u"mute"_s, QVariant::fromValue(&*m_mute) }, { u"leave"_s, QVariant::fromValue(&*m_leave) } });
        QVERIFY(m_view);
        m_view->setPosition(400, 300);
        m_view->show();
        xdotool(u"mousemove 5 5"_s);
        m_view->requestActivate();
        QTRY_VERIFY(m_view->isActive() && m_shortcut->isRegistered());
    }
    void cleanup()
    {
        m_view.reset();
        m_shortcut->unregisterHotkey();
        m_shortcut.reset();
        m_mute.reset();
        m_leave.reset();
    }

    void fromTheKeyboardAlone()
    {
        QSignalSpy recorded(&*m_mute, &KeyRecorder::recorded);
        xdotool(u"key Tab"_s);
        QTRY_VERIFY(item(u"mute"_s)->hasActiveFocus());
        QVERIFY(item(u"mute"_s)->property("visualFocus").toBool());
        xdotool(u"key alt+shift+m"_s);
        QTRY_COMPARE(m_muted, 1);

        const int passed = keysThatPassed(); // the modifiers alone

        // Enter begins and is not recorded itself; the shortcut's own keys can be typed
        xdotool(u"key Return"_s);
        QTRY_VERIFY(m_mute->isRecording());
        xdotool(u"key alt+shift+m"_s);
        QTRY_VERIFY(!m_mute->isRecording());
        QCOMPARE(recorded.takeFirst().first().value<Hotkey>(), altShiftM);

        // Space too; what is no shortcut goes nowhere, and Escape leaves
        xdotool(u"key space"_s);
        QTRY_VERIFY(m_mute->isRecording());
        xdotool(u"key shift+a"_s);
        xdotool(u"key Tab"_s);
        xdotool(u"key Return"_s);
        xdotool(u"key ctrl"_s);
        xdotool(u"key Escape"_s);
        QTRY_VERIFY(!m_mute->isRecording());
        QVERIFY(recorded.isEmpty());
        QCOMPARE(m_mute->hotkey(), altShiftM);

        xdotool(u"key Return"_s);
        QTRY_VERIFY(m_mute->isRecording());
        xdotool(u"key BackSpace"_s);
        QTRY_COMPARE(recorded.size(), 1);
        QVERIFY(m_mute->hotkey().isNone());

        QCOMPARE(m_muted, 1);
        QCOMPARE(keysThatPassed(), passed);
        QVERIFY(item(u"mute"_s)->hasActiveFocus());
        xdotool(u"key alt+shift+m"_s);
        QTRY_COMPARE(m_muted, 2);
        xdotool(u"key Tab"_s);
        QTRY_VERIFY(item(u"leave"_s)->hasActiveFocus());
    }

    void aKeyThatIsHeldLongerPressesNoButton()
    {
        QSignalSpy recorded(&*m_mute, &KeyRecorder::recorded);
        xdotool(u"key Tab"_s);
        xdotool(u"key space"_s);
        QTRY_VERIFY(m_mute->isRecording());
        PressCount repeated;
        xdotool(u"keydown ctrl keydown super keydown space"_s);
        QTRY_COMPARE(recorded.size(), 1);
        QCOMPARE(m_mute->hotkey(), (Hotkey { 49, Modifier::Control | Modifier::Command }));
        QTRY_VERIFY(repeated.seen >= 6);
        QVERIFY(!item(u"mute"_s)->property("pressed").toBool());
        xdotool(u"keyup space keyup super keyup ctrl"_s);
        xdotool(u"key Tab"_s);
        // behind all the repetitions, which a busy machine is slow to work off
        QTRY_VERIFY_WITH_TIMEOUT(item(u"leave"_s)->hasActiveFocus(), 30000);
        QVERIFY(!m_mute->isRecording());
    }

    void clicksEndARecordingAndDoTheirWork()
    {
        click(u"mute"_s);
        QTRY_VERIFY(m_mute->isRecording());
        click(u"mute"_s);
        QTRY_VERIFY(!m_mute->isRecording());
        QTRY_VERIFY(!item(u"mute"_s)->property("pressed").toBool());
        click(u"leave"_s);
        QTRY_VERIFY(m_leave->isRecording());
        QVERIFY(!m_mute->isRecording()); // the click that ended it began none
        click(u"mute"_s);
        QTRY_VERIFY(m_mute->isRecording());
        QVERIFY(!m_leave->isRecording());
        xdotool(u"key alt+shift+l"_s);
        QTRY_COMPARE(m_mute->hotkey(), altShiftL);
        QCOMPARE(m_leave->hotkey(), altShiftL);
    }

    void endsWithItsWindow_data()
    {
        QTest::addColumn<bool>("isHidden");
        QTest::newRow("hidden") << true;
        QTest::newRow("another window is typed into") << false;
    }
    void endsWithItsWindow()
    {
        QFETCH(bool, isHidden);
        click(u"mute"_s);
        QTRY_VERIFY(m_mute->isRecording());
        QRasterWindow other;
        if (isHidden) {
            m_view->hide();
        } else {
            other.show();
            other.requestActivate();
        }
        QTRY_VERIFY(!m_mute->isRecording());
        xdotool(u"key alt+shift+m"_s);
        QTRY_COMPARE(m_muted, 1);
    }
};

} // namespace kestrel

QTEST_MAIN(kestrel::TestKeyRecorderControl)
#include "TestKeyRecorderControl.moc"
