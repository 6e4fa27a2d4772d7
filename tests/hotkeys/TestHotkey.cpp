#include "hotkeys/Hotkey.h"
#include "hotkeys/HotkeyAction.h"
#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

class TestHotkey final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesTheCompactForm()
    {
        QCOMPARE((Hotkey { 46, 2560 }).raw(), uR"({"keyCode":46,"modifiers":2560})"_s);
        QCOMPARE((Hotkey { 4294967295, 0 }).raw(), uR"({"keyCode":4294967295,"modifiers":0})"_s);
    }

    void readsObjectsOfTwoUnsignedNumbers_data()
    {
        QTest::addColumn<QString>("raw");
        QTest::addColumn<quint32>("keyCode");
        QTest::addColumn<quint32>("modifiers");
        QTest::newRow("as written") << uR"({"keyCode":46,"modifiers":2560})"_s << 46U << 2560U;
        QTest::newRow("other order and spaces")
            << u"{ \"modifiers\" : 768,\n \"keyCode\" : 38 }"_s << 38U << 768U;
        QTest::newRow("no shortcut") << uR"({"keyCode":0,"modifiers":0})"_s << 0U << 0U;
        QTest::newRow("largest") << uR"({"keyCode":4294967295,"modifiers":4294967295})"_s << 4294967295U
                                 << 4294967295U;
        QTest::newRow("unknown member") << uR"({"keyCode":1,"modifiers":2,"note":[{}]})"_s << 1U << 2U;
    }

    void readsObjectsOfTwoUnsignedNumbers()
    {
        QFETCH(QString, raw);
        QFETCH(quint32, keyCode);
        QFETCH(quint32, modifiers);
        QCOMPARE(Hotkey::fromRaw(raw), (Hotkey { keyCode, modifiers }));
    }

    void refusesEverythingElse_data()
    {
        QTest::addColumn<QString>("raw");
        QTest::newRow("empty") << QString();
        QTest::newRow("no JSON") << u"cmd+shift+j"_s;
        QTest::newRow("number") << u"46"_s;
        QTest::newRow("array") << u"[46,2560]"_s;
        QTest::newRow("array of the object") << uR"([{"keyCode":46,"modifiers":2560}])"_s;
        QTest::newRow("member missing") << uR"({"keyCode":46})"_s;
        QTest::newRow("member of another case") << uR"({"keycode":46,"modifiers":2560})"_s;
        QTest::newRow("fraction") << uR"({"keyCode":1.5,"modifiers":2560})"_s;
        QTest::newRow("negative") << uR"({"keyCode":46,"modifiers":-1})"_s;
        QTest::newRow("one too large") << uR"({"keyCode":4294967296,"modifiers":0})"_s;
        QTest::newRow("far too large") << uR"({"keyCode":46,"modifiers":1e30})"_s;
        QTest::newRow("text") << uR"({"keyCode":"46","modifiers":2560})"_s;
        QTest::newRow("boolean") << uR"({"keyCode":true,"modifiers":2560})"_s;
        QTest::newRow("null") << uR"({"keyCode":46,"modifiers":null})"_s;
        QTest::newRow("text after it") << uR"({"keyCode":46,"modifiers":2560} x)"_s;
        QTest::newRow("cut off") << uR"({"keyCode":46,"modifiers":2560)"_s;
    }

    void refusesEverythingElse()
    {
        QFETCH(QString, raw);
        QVERIFY(!Hotkey::fromRaw(raw));
    }

    void showsModifiersInTheirOrderAndThenTheKey_data()
    {
        QTest::addColumn<quint32>("keyCode");
        QTest::addColumn<quint32>("modifiers");
        QTest::addColumn<QString>("shown");
        QTest::newRow("all four") << 38U << 6912U << u"⌃ ⌥ ⇧ ⌘ J"_s;
        QTest::newRow("unknown bits are not shown") << 49U << 0x80000100U << u"⌘ Space"_s;
        QTest::newRow("bare key") << 122U << 0U << u"F1"_s;
        QTest::newRow("no shortcut is the A key") << 0U << 0U << u"A"_s;
        QTest::newRow("punctuation") << 27U << 0U << u"?"_s;
        QTest::newRow("digits are not sequential") << 22U << 0U << u"6"_s;
        QTest::newRow("keypad minus") << 78U << 0U << u"Num \u2212"_s;
        QTest::newRow("last key") << 126U << 0U << u"↑"_s;
        QTest::newRow("above the last key") << 127U << 0U << u"?"_s;
        QTest::newRow("far above") << 4294967295U << 0U << u"?"_s;
    }

    void showsModifiersInTheirOrderAndThenTheKey()
    {
        QFETCH(quint32, keyCode);
        QFETCH(quint32, modifiers);
        QTEST((Hotkey { keyCode, modifiers }).displayParts().join(u' '), "shown");
    }

    void everyDefaultShowsAsItIsDocumented()
    {
        QStringList shown;
        for (const HotkeyActionRow &row : hotkeyActions())
            shown.append(row.defaultHotkey.displayParts().join(QString()));
        QCOMPARE(shown.join(u' '),
                 u"⇧⌘J ⌥⇧M ⌥⇧C ⌥⇧H ⌥⇧F ⌥⇧S ⌥⇧L ⌃⌥⇧1 ⌃⌥⇧2 ⌃⌥⇧3 ⌃⌥⇧4 ⌃⌥⇧5 ⌃⌥⇧6 ⌃⌥⇧7 ⌃⌥⇧8 ⌃⌥⇧9 ⌃⌥⇧0"_s);
    }

    void actionsAreFoundByTheirNameAlone()
    {
        QSet<quint32> identifiers;
        QSet<QString> keys;
        for (const HotkeyActionRow &action : hotkeyActions()) {
            QCOMPARE(hotkeyActionFromRaw(QString(action.rawValue)), action.action);
            QCOMPARE(row(action.action).rawValue, action.rawValue);
            identifiers.insert(action.identifier);
            keys.insert(action.preferenceKey);
        }
        QCOMPARE(identifiers.size(), 17);
        QCOMPARE(keys.size(), 17);
        QCOMPARE(row(HotkeyAction::meetShareScreen).preferenceKey, "hotkey.meet.share"_L1);
        QCOMPARE(row(HotkeyAction::meetShareScreen).identifier, 16U);
        QCOMPARE(row(HotkeyAction::meetReactLove).identifier, 15U);
        QVERIFY(!hotkeyActionFromRaw(u"meetmute"));
        QVERIFY(!hotkeyActionFromRaw(u""));
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestHotkey)
#include "TestHotkey.moc"
