#include "hotkeys/HotkeyDispatcher.h"
#include "hotkeys/KeyRecorder.h"
#include "support/EnglishTexts.h"
#include "support/FakeKeyMonitor.h"
#include "support/FakeShortcutBackend.h"
#include <QSignalSpy>
#include <QTest>
#include <optional>

using namespace Qt::StringLiterals;

namespace kestrel {

class TestKeyRecorder final : public QObject
{
    Q_OBJECT

    static constexpr Hotkey before { 46, 2560 };

    FakeShortcutBackend m_backend;
    HotkeyDispatcher m_dispatcher { m_backend };
    FakeKeyMonitor m_monitor;
    std::optional<KeyRecorder> m_recorder;
    EnglishTexts m_texts;

    /// Whether it records, and the application and the desktop know.
    [[nodiscard]] bool records() const
    {
        const bool recording = m_recorder->isRecording();
        return m_monitor.isRunning == recording && m_backend.isSuspended == recording && recording;
    }
    [[nodiscard]] bool rests() const
    {
        return !m_recorder->isRecording() && !m_monitor.isRunning && !m_backend.isSuspended;
    }

private Q_SLOTS:
    void init()
    {
        m_recorder.emplace(m_dispatcher, m_monitor);
        m_recorder->setHotkey(before);
    }

    void keysWhileRecording_data()
    {
        QTest::addColumn<quint32>("keyCode");
        QTest::addColumn<quint32>("modifiers");
        QTest::addColumn<bool>("ends");
        QTest::addColumn<Hotkey>("hotkey");
        QTest::newRow("Escape") << 53U << 0U << true << before;
        QTest::newRow("Escape with modifiers") << 53U << 256U << true << before;
        QTest::newRow("Delete") << 51U << 0U << true << Hotkey { 0, 0 };
        QTest::newRow("Delete with modifiers") << 51U << 6912U << true << Hotkey { 0, 0 };
        QTest::newRow("a key alone") << 0U << 0U << false << before;
        QTest::newRow("a function key alone") << 122U << 0U << false << before;
        QTest::newRow("shift and a key") << 0U << 512U << false << before;
        QTest::newRow("a bit of no modifier") << 0U << 1024U << false << before;
        QTest::newRow("option, shift, A") << 0U << 2560U << true << Hotkey { 0, 2560 };
        QTest::newRow("command") << 38U << 256U << true << Hotkey { 38, 256 };
        QTest::newRow("control") << 38U << 4096U << true << Hotkey { 38, 4096 };
        QTest::newRow("all four") << 38U << 6912U << true << Hotkey { 38, 6912 };
        QTest::newRow("the same again") << 46U << 2560U << true << before;
    }
    void keysWhileRecording()
    {
        QFETCH(quint32, keyCode);
        QFETCH(quint32, modifiers);
        QFETCH(bool, ends);
        QSignalSpy recorded(&*m_recorder, &KeyRecorder::recorded);
        m_recorder->tap();
        QVERIFY(records());
        m_monitor.type(keyCode, modifiers);
        QVERIFY(ends ? rests() : records());
        QTEST(m_recorder->hotkey(), "hotkey");
        const bool isStored = ends && keyCode != 53;
        QCOMPARE(recorded.size(), isStored ? 1 : 0);
        if (isStored)
            QTEST(recorded.first().first().value<Hotkey>(), "hotkey");
    }

    void aClickEndsARecordingAndStartsNone()
    {
        m_recorder->tap();
        m_monitor.click(); // on the recorder itself: the click follows
        QVERIFY(rests());
        m_recorder->tap();
        QVERIFY(rests());
        m_recorder->tap();
        QVERIFY(records());

        auto *suppression = m_recorder->findChild<QTimer *>();
        m_monitor.click(); // elsewhere: none follows
        QVERIFY(suppression->isActive());
        QTRY_VERIFY(!suppression->isActive());
        m_recorder->tap();
        QVERIFY(records());

        m_monitor.click(); // on the recorder, and held down for long
        m_recorder->setHeld(true);
        QVERIFY(!suppression->isActive());
        m_recorder->setHeld(false);
        m_recorder->tap();
        QVERIFY(rests());
        m_recorder->tap();
        QVERIFY(records());
    }

    void itEndsWithItsControl()
    {
        m_recorder->tap();
        m_recorder->stop();
        QVERIFY(rests());
        m_recorder->tap();
        m_recorder.reset();
        QVERIFY(!m_monitor.isRunning && !m_backend.isSuspended);
    }

    void showsWhatIsTrue()
    {
        QSignalSpy changed(&*m_recorder, &KeyRecorder::changed);
        QCOMPARE(m_recorder->text(), u"Alt+Shift+M"_s);
        QCOMPARE(m_recorder->keyCaps(), (QStringList { u"⌥"_s, u"⇧"_s, u"M"_s }));
        m_recorder->tap();
        QCOMPARE(m_recorder->text(), u"Press the keys…"_s);
        m_monitor.type(51, 0);
        QCOMPARE(m_recorder->text(), u"No shortcut"_s);
        QCOMPARE(m_recorder->keyCaps(), QStringList());
        QCOMPARE(changed.size(), 3); // recording, no shortcut, no longer recording
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestKeyRecorder)
#include "TestKeyRecorder.moc"
