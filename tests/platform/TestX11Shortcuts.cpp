#include "platform/Modifier.h"
#include "platform/linux/KeyPositions.h"
#include "platform/linux/MakeShortcutBackend.h"
#include "platform/linux/PortalShortcuts.h"
#include "platform/linux/X11Shortcuts.h"
#include "support/Person.h"
#include <QGuiApplication>
#include <QSignalSpy>
#include <algorithm>
#include <vector>
#include <xcb/xtest.h>

using namespace kestrel;
using namespace Qt::StringLiterals;

namespace {

constexpr quint32 optionShift = Modifier::Option | Modifier::Shift;
constexpr quint32 all = optionShift | Modifier::Control | Modifier::Command;
constexpr quint32 muteKey = 46; // M
constexpr quint16 muteModifiers = XCB_MOD_MASK_1 | XCB_MOD_MASK_SHIFT;
constexpr quint32 leaveKey = 37; // L
constexpr quint32 digitOneKey = 18;
constexpr quint8 numLockKeycode = 77;
constexpr quint16 secondLayout = 1 << 13; // as XKB writes it into the state
const auto altShiftM = u"key 64+50+58"_s; // by X keycodes: no layout moves them

void setLayout(const QString &layout)
{
    QCOMPARE(QProcess::execute(u"setxkbmap"_s, layout.split(u' ')), 0);
}

ShortcutBackend::Shortcut shortcut(quint32 id, quint32 keyCode, quint32 modifiers = optionShift)
{
    return { id, QString::number(id), {}, keyCode, modifiers };
}

/// Another program of the display.
class Neighbour final
{
public:
    Neighbour() = default;
    ~Neighbour() { xcb_disconnect(connection); }
    Neighbour(const Neighbour &) = delete;
    Neighbour &operator=(const Neighbour &) = delete;

    /// Whether it gets the key.
    [[nodiscard]] bool grab(quint32 keyCode, quint16 modifiers) const
    {
        const auto cookie =
            xcb_grab_key_checked(connection, false, x11::root(), modifiers, *xKeycodeOf(keyCode),
                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        const x11::Reply<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
        return !error;
    }
    void letGo(quint32 keyCode, quint16 modifiers) const
    {
        xcb_ungrab_key(connection, *xKeycodeOf(keyCode), x11::root(), modifiers);
        sync();
    }
    [[nodiscard]] bool couldGrab(quint32 keyCode, quint16 modifiers) const
    {
        const bool isFree = grab(keyCode, modifiers);
        letGo(keyCode, modifiers);
        return isFree;
    }
    /// Puts the Num Lock key under another modifier.
    void setNumLock(xcb_map_index_t modifier) const
    {
        const x11::Reply<xcb_get_modifier_mapping_reply_t> now(
            xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr));
        const int width = now->keycodes_per_modifier;
        const auto *first = xcb_get_modifier_mapping_keycodes(now.get());
        std::vector<xcb_keycode_t> keycodes(first, first + ptrdiff_t(8) * width);
        std::ranges::replace(keycodes, numLockKeycode, 0);
        keycodes[size_t(modifier) * size_t(width)] = numLockKeycode;
        const x11::Reply<xcb_set_modifier_mapping_reply_t> changed(xcb_set_modifier_mapping_reply(
            connection, xcb_set_modifier_mapping(connection, quint8(width), keycodes.data()), nullptr));
        QVERIFY(changed && changed->status == XCB_MAPPING_STATUS_SUCCESS);
    }
    void sync() const
    {
        const x11::Reply<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    }

    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
};

} // namespace

/// The real keyboard of a display of its own; xdotool presses its keys.
class TestX11Shortcuts final : public QObject
{
    Q_OBJECT

    /// The identifiers of the presses so far.
    static QList<quint32> ids(const QSignalSpy &pressed)
    {
        QList<quint32> ids;
        for (const QVariantList &press : pressed)
            ids << press.first().toUInt();
        return ids;
    }
    static QList<bool> bound(const QSignalSpy &answered)
    {
        QList<bool> bound;
        for (const auto &outcome : answered.last().first().value<QList<ShortcutBackend::Outcome>>())
            bound << outcome.isBound;
        return bound;
    }

    /// Modifiers and locks that are on.
    static quint16 state()
    {
        const x11::Reply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
            x11::connection(), xcb_query_pointer(x11::connection(), x11::root()), nullptr));
        return reply->mask;
    }

    /// All of them down and up again. xdotool would go back to the first layout for it.
    static void type(const QList<quint8> &keycodes)
    {
        const Neighbour keyboard;
        for (const quint8 keycode : keycodes)
            xcb_test_fake_input(keyboard.connection, XCB_KEY_PRESS, keycode, 0, x11::root(), 0, 0, 0);
        for (const quint8 keycode : keycodes)
            xcb_test_fake_input(keyboard.connection, XCB_KEY_RELEASE, keycode, 0, x11::root(), 0, 0, 0);
        keyboard.sync();
    }

private Q_SLOTS:
    void cleanup()
    {
        setLayout(u"us"_s);
        if (state() & XCB_MOD_MASK_LOCK)
            xdotool(u"key 66"_s);
        if (state() & XCB_MOD_MASK_2)
            xdotool(u"key 77"_s);
        QCOMPARE(state(), 0);
    }

    void insideWaylandThePortalHasTheKeys()
    {
        const auto bus = QDBusConnection::sessionBus();
        QVERIFY(dynamic_cast<X11Shortcuts *>(makeShortcutBackend(bus).get()));
        qputenv("WAYLAND_DISPLAY", "wayland-0");
        const auto backend = makeShortcutBackend(bus);
        qunsetenv("WAYLAND_DISPLAY");
        QVERIFY(dynamic_cast<PortalShortcuts *>(backend.get()));
    }

    void locksAndLayoutsDoNotMatter_data()
    {
        QTest::addColumn<QString>("layout");
        QTest::addColumn<quint16>("locks");
        const quint16 none = 0;
        const quint16 caps = XCB_MOD_MASK_LOCK;
        const quint16 num = XCB_MOD_MASK_2;
        QTest::newRow("no lock") << u"us"_s << none;
        QTest::newRow("both locks") << u"us"_s << quint16(caps | num);
        QTest::newRow("Spanish") << u"es"_s << none;
        QTest::newRow("French, where that key types a comma") << u"fr"_s << num;
        QTest::newRow("Russian") << u"ru"_s << caps;
    }
    void locksAndLayoutsDoNotMatter()
    {
        QFETCH(QString, layout);
        QFETCH(quint16, locks);
        X11Shortcuts shortcuts;
        QSignalSpy pressed(&shortcuts, &ShortcutBackend::pressed);
        QSignalSpy answered(&shortcuts, &ShortcutBackend::answered);
        shortcuts.bind({ shortcut(2, muteKey), shortcut(7, digitOneKey, all) });
        QCOMPARE(bound(answered), (QList<bool> { true, true }));
        setLayout(layout);
        if (locks & XCB_MOD_MASK_LOCK)
            xdotool(u"key 66"_s);
        if (locks & XCB_MOD_MASK_2)
            xdotool(u"key 77"_s);
        QCOMPARE(state(), locks);

        xdotool(u"key 64+50+10"_s); // alt, shift, 1: nobody's
        xdotool(altShiftM);
        xdotool(u"key 37+64+50+133+10"_s); // control, alt, shift, super, 1
        QTRY_COMPARE(ids(pressed), (QList<quint32> { 2, 7 }));
    }

    void theSecondLayoutOfTwoIsNoLockEither()
    {
        setLayout(u"us,ru -option grp:caps_toggle"_s);
        X11Shortcuts shortcuts;
        QSignalSpy pressed(&shortcuts, &ShortcutBackend::pressed);
        shortcuts.bind({ shortcut(2, muteKey) });
        type({ 66 });
        QCOMPARE(state() & secondLayout, secondLayout);
        type({ 64, 50, 58 });
        QTRY_COMPARE(ids(pressed), QList<quint32> { 2 });
        type({ 66 });
        setLayout(u"us -option"_s);
    }

    void whatAnotherProgramHasIsRefusedAndTriedAgain_data()
    {
        QTest::addColumn<quint16>("lock");
        QTest::newRow("all of it") << quint16(0);
        QTest::newRow("the variant with both locks alone") << quint16(XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2);
    }
    void whatAnotherProgramHasIsRefusedAndTriedAgain()
    {
        QFETCH(quint16, lock);
        const Neighbour neighbour;
        QVERIFY(neighbour.grab(muteKey, muteModifiers | lock));
        X11Shortcuts shortcuts;
        QSignalSpy pressed(&shortcuts, &ShortcutBackend::pressed);
        QSignalSpy answered(&shortcuts, &ShortcutBackend::answered);
        const QList set { shortcut(2, muteKey), shortcut(17, leaveKey), shortcut(3, 255),
                          shortcut(4, leaveKey) };
        shortcuts.bind(set);
        // taken; free; a key that does not exist; the same keys once more
        QCOMPARE(bound(answered), (QList<bool> { false, true, false, false }));
        // nothing is left half taken
        const QList<quint16> others { 0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2 };
        for (const quint16 variant : others)
            QVERIFY(neighbour.grab(muteKey, muteModifiers | variant));
        QVERIFY(!neighbour.grab(leaveKey, muteModifiers));

        for (const quint16 variant : others + QList { lock })
            neighbour.letGo(muteKey, muteModifiers | variant);
        shortcuts.bind(set);
        QCOMPARE(bound(answered), (QList<bool> { true, true, false, false }));
        QCOMPARE(answered.size(), 2);
        xdotool(altShiftM);
        QTRY_COMPARE(ids(pressed), QList<quint32> { 2 });
    }

    void aHeldKeyIsPressedOnce_data()
    {
        QTest::addColumn<bool>("isDownBefore");
        QTest::newRow("pressed once it is ours") << false;
        QTest::newRow("down already, as when it has just been recorded") << true;
    }
    void aHeldKeyIsPressedOnce()
    {
        QFETCH(bool, isDownBefore);
        X11Shortcuts shortcuts;
        PressCount reached; // asked first: it was installed last
        QSignalSpy pressed(&shortcuts, &ShortcutBackend::pressed);
        if (!isDownBefore)
            shortcuts.bind({ shortcut(2, muteKey) });
        xdotool(u"keydown 64 keydown 50 keydown 58"_s);
        if (isDownBefore)
            shortcuts.bind({ shortcut(2, muteKey) });
        QTRY_VERIFY(reached.seen >= 4); // it repeats
        const qsizetype first = isDownBefore ? 0 : 1;
        QCOMPARE(pressed.size(), first);
        xdotool(u"keyup 58"_s);
        xdotool(u"keydown 58 keyup 58 keyup 50 keyup 64"_s);
        QTRY_COMPARE(pressed.size(), first + 1);
    }

    void nothingIsHeldWhileSuspended()
    {
        const Neighbour neighbour;
        X11Shortcuts shortcuts;
        QSignalSpy pressed(&shortcuts, &ShortcutBackend::pressed);
        QSignalSpy answered(&shortcuts, &ShortcutBackend::answered);
        shortcuts.bind({ shortcut(2, muteKey) });
        shortcuts.setSuspended(true);
        QVERIFY(neighbour.grab(muteKey, muteModifiers));
        neighbour.letGo(muteKey, muteModifiers);
        shortcuts.setSuspended(false);
        QVERIFY(!neighbour.grab(muteKey, muteModifiers));
        QCOMPARE(answered.size(), 1);
        xdotool(altShiftM);
        QTRY_COMPARE(ids(pressed), QList<quint32> { 2 });

        // a set that comes meanwhile is answered afterwards, and what another program took meanwhile is lost
        shortcuts.setSuspended(true);
        QVERIFY(neighbour.grab(muteKey, muteModifiers));
        shortcuts.bind({ shortcut(2, muteKey), shortcut(17, leaveKey) });
        QCOMPARE(answered.size(), 1);
        shortcuts.setSuspended(false);
        QCOMPARE(bound(answered), (QList<bool> { false, true }));
    }

    void whatIsNotWantedAnyMoreIsFree()
    {
        const Neighbour neighbour;
        {
            X11Shortcuts shortcuts;
            shortcuts.bind({ shortcut(2, muteKey), shortcut(17, leaveKey) });
            shortcuts.bind({ shortcut(9, leaveKey) }); // another action has these keys now
            QSignalSpy pressed(&shortcuts, &ShortcutBackend::pressed);
            QVERIFY(neighbour.grab(muteKey, muteModifiers));
            QVERIFY(!neighbour.grab(leaveKey, muteModifiers));
            xdotool(u"key 64+50+46"_s);
            QTRY_COMPARE(ids(pressed), QList<quint32> { 9 });
        }
        QVERIFY(neighbour.grab(leaveKey, muteModifiers));
    }

    void followsAModifierThatMoves()
    {
        const Neighbour neighbour;
        X11Shortcuts shortcuts;
        QSignalSpy pressed(&shortcuts, &ShortcutBackend::pressed);
        shortcuts.bind({ shortcut(2, muteKey) });
        QVERIFY(neighbour.couldGrab(muteKey, muteModifiers | XCB_MOD_MASK_3));
        neighbour.setNumLock(XCB_MAP_INDEX_3);
        QTRY_VERIFY(!neighbour.couldGrab(muteKey, muteModifiers | XCB_MOD_MASK_3));
        QVERIFY(neighbour.couldGrab(muteKey, muteModifiers | XCB_MOD_MASK_2));
        xdotool(u"key 77"_s);
        QCOMPARE(state(), XCB_MOD_MASK_3);
        xdotool(altShiftM);
        QTRY_COMPARE(ids(pressed), QList<quint32> { 2 });
        xdotool(u"key 77"_s);
    }
};

QTEST_MAIN(TestX11Shortcuts)
#include "TestX11Shortcuts.moc"
