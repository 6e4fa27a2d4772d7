#include "hotkeys/Hotkey.h"
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

class TestHotkey final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsObjectsOfTwoUnsignedNumbers_data()
    {
        QTest::addColumn<std::optional<Hotkey>>("hotkey");
        QTest::newRow(R"({"keyCode":46,"modifiers":2560})") << std::optional(Hotkey { 46, 2560 });
        QTest::newRow(R"({ "modifiers" : 768, "keyCode" : 38, "note": [{}] })")
            << std::optional(Hotkey { 38, 768 });
        QTest::newRow(R"({"keyCode":4294967295,"modifiers":0})") << std::optional(Hotkey { 4294967295, 0 });
        for (const char *refused :
             { "", "cmd+shift+j", "46", "[46,2560]", R"({"keyCode":46})",
               R"({"keycode":46,"modifiers":2560})", R"({"keyCode":1.5,"modifiers":2560})",
               R"({"keyCode":46,"modifiers":-1})", R"({"keyCode":4294967296,"modifiers":0})",
               R"({"keyCode":46,"modifiers":1e30})", R"({"keyCode":"46","modifiers":2560})",
               R"({"keyCode":46,"modifiers":null})", R"({"keyCode":46,"modifiers":2560} x)" })
            QTest::newRow(refused) << std::optional<Hotkey>();
    }

    void readsObjectsOfTwoUnsignedNumbers()
    {
        QFETCH(std::optional<Hotkey>, hotkey);
        QCOMPARE(Hotkey::fromRaw(QString::fromLatin1(QTest::currentDataTag())), hotkey);
        if (hotkey)
            QCOMPARE(hotkey->raw(),
                     uR"({"keyCode":%1,"modifiers":%2})"_s.arg(hotkey->keyCode).arg(hotkey->modifiers));
    }

    void showsModifiersInTheirOrderAndThenTheKey_data()
    {
        QTest::addColumn<Hotkey>("hotkey");
        QTest::addColumn<QString>("shown");
        QTest::newRow("all four") << Hotkey { 38, 6912 } << u"⌃ ⌥ ⇧ ⌘ J"_s;
        QTest::newRow("unknown bits are not shown") << Hotkey { 49, 0x80000100U } << u"⌘ Space"_s;
        QTest::newRow("keypad minus") << Hotkey { 78, 0 } << u"Num \u2212"_s;
        QTest::newRow("last key") << Hotkey { 126, 0 } << u"↑"_s;
        QTest::newRow("above the last key") << Hotkey { 127, 0 } << u"?"_s;
    }

    void showsModifiersInTheirOrderAndThenTheKey()
    {
        QFETCH(Hotkey, hotkey);
        QTEST(hotkey.displayParts().join(u' '), "shown");
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestHotkey)
#include "TestHotkey.moc"
