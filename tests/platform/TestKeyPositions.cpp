#include "hotkeys/Hotkey.h"
#include "platform/linux/KeyPositions.h"
#include <QSet>
#include <QTest>
#include <xkbcommon/xkbcommon.h>

using namespace Qt::StringLiterals;

namespace kestrel {

class TestKeyPositions final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLabelledKeyMapsBothWays()
    {
        QSet<quint8> keycodes;
        int labelled = 0;
        for (quint32 keyCode = 0; keyCode < 128; ++keyCode) {
            const auto keycode = xKeycodeOf(keyCode);
            if (keyLabel(keyCode) != u"?") {
                ++labelled;
                QVERIFY2(keycode, qPrintable(keyLabel(keyCode)));
            }
            if (!keycode)
                continue;
            QCOMPARE(keyCodeOfXKeycode(*keycode), keyCode);
            QVERIFY(!keycodes.contains(*keycode));
            keycodes.insert(*keycode);
        }
        QCOMPARE(labelled, 75);
        for (const quint32 unknown : { 54U, 55U, 56U, 63U, 127U, 4294967295U }) // modifiers, fn, above
            QVERIFY(!xKeycodeOf(unknown) && !usKeysymName(unknown));
        for (const quint32 unknown : { 0U, 8U, 50U, 64U, 133U, 255U, 100000U })
            QVERIFY(!keyCodeOfXKeycode(unknown));
    }

    /// The table against what xkbcommon knows of the US keyboard, by nothing but the keycode.
    void theUsLayoutIsWhatXkbcommonSays()
    {
        const std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context(
            xkb_context_new(XKB_CONTEXT_NO_FLAGS), &xkb_context_unref);
        const xkb_rule_names names { "evdev", "pc105", "us", "", "" };
        const std::unique_ptr<xkb_keymap, decltype(&xkb_keymap_unref)> keymap(
            xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS), &xkb_keymap_unref);
        QVERIFY(keymap);
        for (quint32 keyCode = 0; keyCode < 128; ++keyCode) {
            const auto keysym = usKeysymName(keyCode);
            if (!keysym)
                continue;
            const xkb_keysym_t wanted = xkb_keysym_from_name(keysym->constData(), XKB_KEYSYM_NO_FLAGS);
            QVERIFY2(wanted != XKB_KEY_NoSymbol, keysym->constData());
            QList<xkb_keysym_t> there;
            for (xkb_level_index_t level = 0; level < 2; ++level) {
                const xkb_keysym_t *symbols = nullptr;
                const int count =
                    xkb_keymap_key_get_syms_by_level(keymap.get(), *xKeycodeOf(keyCode), 0, level, &symbols);
                there += QList<xkb_keysym_t>(symbols, symbols + count);
            }
            QVERIFY2(there.contains(wanted), keysym->constData());
            if (const QString label = keyLabel(keyCode); label.size() == 1 && label[0].isLetterOrNumber())
                QCOMPARE(QString::fromUtf8(*keysym).toUpper(), label);
        }
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestKeyPositions)
#include "TestKeyPositions.moc"
