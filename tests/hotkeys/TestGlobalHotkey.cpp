#include "hotkeys/GlobalHotkey.h"
#include "hotkeys/HotkeyAction.h"
#include "hotkeys/HotkeyDispatcher.h"
#include "support/EnglishTexts.h"
#include "support/FakeShortcutBackend.h"
#include <QRegularExpression>
#include <QTest>
#include <memory>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr quint32 optionShift = Modifier::Option | Modifier::Shift;

QList<quint32> identifiers(const QList<ShortcutBackend::Shortcut> &set)
{
    QList<quint32> ids;
    for (const auto &shortcut : set)
        ids << shortcut.id;
    return ids;
}

/// To the end of the event loop's turn, and of what that one begins.
void endTurn()
{
    QCoreApplication::processEvents();
}

/// One desktop, and shortcuts that write down their letter.
struct Desk
{
    std::unique_ptr<GlobalHotkey> make(quint32 id, QChar letter, quint32 keyCode = 46)
    {
        return std::make_unique<GlobalHotkey>(dispatcher, u"Meet:"_s + letter, keyCode, optionShift, id,
                                              [this, letter] { done += letter; });
    }
    void press(quint32 id)
    {
        backend.press(id);
        endTurn();
    }

    FakeShortcutBackend backend;
    HotkeyDispatcher dispatcher { backend };
    QString done;
};

void expectRefusal(QChar letter)
{
    QTest::ignoreMessage(
        QtCriticalMsg,
        qPrintable(
            u"RegisterEventHotKey failed for Meet:%1 (another app may own this shortcut)"_s.arg(letter)));
}

} // namespace

class TestGlobalHotkey final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void oneTurnIsOneSetAndAnUnchangedOneStays()
    {
        Desk desk;
        auto mute = desk.make(2, u'm');
        auto leave = desk.make(17, u'l', 37);
        mute->registerHotkey();
        mute->registerHotkey();
        leave->registerHotkey();
        QVERIFY(desk.backend.sets.isEmpty());
        endTurn();
        const ShortcutBackend::Shortcut first { 2, u"meetMute"_s, u"Microphone on or off"_s, 46,
                                                optionShift };
        const ShortcutBackend::Shortcut second { 17, u"meetLeave"_s, u"Leave the call"_s, 37, optionShift };
        QCOMPARE(desk.backend.sets.size(), 1);
        QCOMPARE(desk.backend.sets.first(), (QList<ShortcutBackend::Shortcut> { first, second }));

        // as after every changed preference: all of them go, and the same come back
        mute->unregisterHotkey();
        leave->unregisterHotkey();
        mute = desk.make(2, u'M');
        leave = desk.make(17, u'L', 37);
        mute->registerHotkey();
        leave->registerHotkey();
        endTurn();
        QCOMPARE(desk.backend.sets.size(), 1);
        QVERIFY(mute->isRegistered() && leave->isRegistered());
        desk.press(2);
        QCOMPARE(desk.done, u"M"_s);

        mute->unregisterHotkey();
        leave->unregisterHotkey();
        endTurn();
        QCOMPARE(desk.backend.sets.last(), QList<ShortcutBackend::Shortcut>());
    }

    void theAnswerDecides()
    {
        Desk desk;
        desk.backend.isHeld = true;
        desk.backend.taken = { 17 };
        const auto mute = desk.make(2, u'm');
        const auto leave = desk.make(17, u'l');
        const auto late = desk.make(1, u'j');
        mute->registerHotkey();
        leave->registerHotkey();
        endTurn();
        QVERIFY(!mute->isRegistered());
        late->registerHotkey();
        desk.backend.answer(); // to a set that is about to be another one
        QVERIFY(!mute->isRegistered());
        endTurn();
        QCOMPARE(identifiers(desk.backend.sets.last()), (QList<quint32> { 2, 17, 1 }));

        expectRefusal(u'l');
        desk.backend.answer();
        QVERIFY(mute->isRegistered() && !leave->isRegistered() && late->isRegistered());
        desk.press(17);
        desk.press(2);
        QCOMPARE(desk.done, u"m"_s);

        desk.backend.answer(); // the same once more: nothing to say
        leave->registerHotkey(); // now that the other program ended
        endTurn();
        desk.backend.taken.clear();
        desk.backend.answer();
        desk.press(17);
        QCOMPARE(desk.done, u"ml"_s);

        desk.backend.taken = { 2 }; // the desktop changes its mind
        expectRefusal(u'm');
        desk.backend.answer();
        QVERIFY(!mute->isRegistered());
        desk.press(2);
        QCOMPARE(desk.done, u"ml"_s);
        desk.backend.taken.clear(); // and once more
        desk.backend.answer();
        desk.press(2);
        QCOMPARE(desk.done, u"mlm"_s);
    }

    void ofTwoWithOneIdentifierTheLaterCounts_data()
    {
        QTest::addColumn<bool>("laterIsRefused");
        QTest::addColumn<int>("unregistered"); // 0: none, 1: the first, 2: the second
        QTest::addColumn<QString>("done");
        QTest::newRow("both stay") << false << 0 << u"b"_s;
        QTest::newRow("the first goes") << false << 1 << QString();
        QTest::newRow("the second goes") << false << 2 << QString();
        QTest::newRow("the second is refused") << true << 0 << QString();
    }
    void ofTwoWithOneIdentifierTheLaterCounts()
    {
        QFETCH(bool, laterIsRefused);
        QFETCH(int, unregistered);
        Desk desk;
        const auto first = desk.make(2, u'a');
        const auto second = desk.make(2, u'b', 37);
        first->registerHotkey();
        endTurn();
        second->registerHotkey();
        if (laterIsRefused) {
            desk.backend.taken = { 2 };
            expectRefusal(u'a');
            expectRefusal(u'b');
        }
        endTurn();
        QCOMPARE(desk.backend.sets.last().size(), 1);
        QCOMPARE(desk.backend.sets.last().first().keyCode, 37U);
        if (unregistered != 0)
            (unregistered == 1 ? first : second)->unregisterHotkey();
        desk.press(2);
        QTEST(desk.done, "done");
    }

    void aPressRunsAfterItsEventAndOnlyWhatIsStillRegistered()
    {
        Desk desk;
        auto mute = desk.make(2, u'm');
        mute->registerHotkey();
        endTurn();
        desk.backend.press(2);
        desk.backend.press(99); // unknown
        QCOMPARE(desk.done, QString());
        endTurn();
        QCOMPARE(desk.done, u"m"_s);

        desk.backend.press(2);
        mute->unregisterHotkey();
        endTurn();
        QCOMPARE(desk.done, u"m"_s);
    }

    void oneThatIsDestroyedGivesItsKeyBack()
    {
        Desk desk;
        auto mute = desk.make(2, u'm');
        mute->registerHotkey();
        endTurn();
        mute.reset();
        endTurn();
        QCOMPARE(desk.backend.sets.last(), QList<ShortcutBackend::Shortcut>());
    }

private:
    EnglishTexts m_texts;
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestGlobalHotkey)
#include "TestGlobalHotkey.moc"
