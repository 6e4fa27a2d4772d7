#include "platform/linux/X11Shortcuts.h"
#include "platform/Modifier.h"
#include "platform/linux/KeyPositions.h"
#include <QCoreApplication>
#include <algorithm>

namespace kestrel {

namespace {

// X11/keysymdef.h
constexpr xcb_keysym_t numLockKeysym = 0xff7f;
constexpr xcb_keysym_t leftAltKeysym = 0xffe9;
constexpr xcb_keysym_t rightAltKeysym = 0xffea;
constexpr xcb_keysym_t leftSuperKeysym = 0xffeb;
constexpr xcb_keysym_t rightSuperKeysym = 0xffec;

// X Keyboard Extension protocol, section 16; xcb/xkb.h is no C++
constexpr quint8 xkbNewKeyboardNotify = 0;
constexpr quint8 xkbMapNotify = 1;

quint8 firstXkbEvent()
{
    constexpr QByteArrayView name("XKEYBOARD");
    const auto asked = xcb_query_extension(x11::connection(), quint16(name.size()), name.data());
    const x11::Reply<xcb_query_extension_reply_t> reply(
        xcb_query_extension_reply(x11::connection(), asked, nullptr));
    return reply && reply->present ? reply->first_event : 0;
}

} // namespace

X11Shortcuts::X11Shortcuts(QObject *parent)
    : ShortcutBackend(parent)
    , m_xkbEvents(firstXkbEvent())
    , m_masks(askModifierMasks())
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11Shortcuts::~X11Shortcuts()
{
    letGo(m_held.values());
}

X11Shortcuts::ModifierMasks X11Shortcuts::askModifierMasks()
{
    const auto *setup = xcb_get_setup(x11::connection());
    const auto keyCount = quint8(setup->max_keycode - setup->min_keycode + 1);
    const auto keysAsked = xcb_get_keyboard_mapping(x11::connection(), setup->min_keycode, keyCount);
    const auto modifiersAsked = xcb_get_modifier_mapping(x11::connection());
    const x11::Reply<xcb_get_keyboard_mapping_reply_t> keys(
        xcb_get_keyboard_mapping_reply(x11::connection(), keysAsked, nullptr));
    const x11::Reply<xcb_get_modifier_mapping_reply_t> modifiers(
        xcb_get_modifier_mapping_reply(x11::connection(), modifiersAsked, nullptr));

    ModifierMasks masks;
    const auto learn = [&](xcb_keycode_t keycode, quint16 bit) {
        const xcb_keysym_t *first = xcb_get_keyboard_mapping_keysyms(keys.get())
            + ptrdiff_t(keycode - setup->min_keycode) * keys->keysyms_per_keycode;
        for (const xcb_keysym_t *symbol = first; symbol != first + keys->keysyms_per_keycode; ++symbol) {
            quint16 *mask = nullptr;
            if (*symbol == numLockKeysym)
                mask = &masks.numLock;
            else if (*symbol == leftAltKeysym || *symbol == rightAltKeysym)
                mask = &masks.option;
            else if (*symbol == leftSuperKeysym || *symbol == rightSuperKeysym)
                mask = &masks.command;
            if (mask && *mask == 0)
                *mask = bit;
        }
    };
    if (keys && modifiers) {
        const xcb_keycode_t *keycodes = xcb_get_modifier_mapping_keycodes(modifiers.get());
        // Shift, Lock and Control are what they are called
        for (int modifier = XCB_MAP_INDEX_1; modifier <= XCB_MAP_INDEX_5; ++modifier) {
            for (int i = 0; i < modifiers->keycodes_per_modifier; ++i) {
                const xcb_keycode_t keycode = keycodes[modifier * modifiers->keycodes_per_modifier + i];
                if (keycode >= setup->min_keycode)
                    learn(keycode, quint16(1 << modifier));
            }
        }
    }
    if (masks.option == 0)
        masks.option = XCB_MOD_MASK_1;
    if (masks.command == 0)
        masks.command = XCB_MOD_MASK_4;
    return masks;
}

std::optional<X11Shortcuts::Chord> X11Shortcuts::chordOf(const Shortcut &shortcut) const
{
    const auto keycode = xKeycodeOf(shortcut.keyCode);
    if (!keycode)
        return {};
    quint16 modifiers = 0;
    if (shortcut.modifiers & Modifier::Shift)
        modifiers |= XCB_MOD_MASK_SHIFT;
    if (shortcut.modifiers & Modifier::Control)
        modifiers |= XCB_MOD_MASK_CONTROL;
    if (shortcut.modifiers & Modifier::Option)
        modifiers |= m_masks.option;
    if (shortcut.modifiers & Modifier::Command)
        modifiers |= m_masks.command;
    return Chord { *keycode, modifiers };
}

QList<quint16> X11Shortcuts::withLocks(quint16 modifiers) const
{
    QList<quint16> variants { modifiers, quint16(modifiers | XCB_MOD_MASK_LOCK) };
    if (m_masks.numLock != 0)
        variants += { quint16(variants[0] | m_masks.numLock), quint16(variants[1] | m_masks.numLock) };
    return variants;
}

void X11Shortcuts::bind(const QList<Shortcut> &shortcuts)
{
    m_shortcuts = shortcuts;
    m_isAnswerOwed = true;
    grab();
}

void X11Shortcuts::setSuspended(bool suspended)
{
    m_isSuspended = suspended;
    grab();
}

void X11Shortcuts::grab()
{
    m_wanted.clear();
    for (const Shortcut &shortcut : std::as_const(m_shortcuts)) {
        // the server would take a second one with the same keys without a word
        if (const auto chord = chordOf(shortcut); chord && !m_wanted.contains(*chord))
            m_wanted.insert(*chord, shortcut.id);
    }
    QList<Chord> unwanted;
    for (const Chord &chord : std::as_const(m_held)) {
        if (m_isSuspended || !m_wanted.contains(chord))
            unwanted << chord;
    }
    letGo(unwanted);
    if (m_isSuspended)
        return;
    QList<Chord> missing;
    for (auto wanted = m_wanted.keyBegin(); wanted != m_wanted.keyEnd(); ++wanted) {
        if (!m_held.contains(*wanted))
            missing << *wanted;
    }
    tryToGrab(missing);
    tellOutcomes();
}

void X11Shortcuts::tryToGrab(const QList<Chord> &chords)
{
    if (chords.isEmpty())
        return;
    xcb_connection_t *connection = x11::connection();
    QList<std::pair<Chord, xcb_void_cookie_t>> asked;
    for (const Chord &chord : chords) {
        for (const quint16 modifiers : withLocks(chord.second))
            asked.emplace_back(chord,
                               xcb_grab_key_checked(connection, false, x11::root(), modifiers, chord.first,
                                                    XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        m_held.insert(chord);
    }
    QSet<Chord> refused;
    for (const auto &[chord, cookie] : std::as_const(asked)) {
        if (const x11::Reply<xcb_generic_error_t> error(xcb_request_check(connection, cookie)); error)
            refused.insert(chord);
    }
    letGo(refused.values()); // some of its variants may have been free
}

void X11Shortcuts::letGo(const QList<Chord> &chords)
{
    if (chords.isEmpty() || !x11::connection())
        return;
    for (const Chord &chord : chords) {
        for (const quint16 modifiers : withLocks(chord.second))
            xcb_ungrab_key(x11::connection(), chord.first, x11::root(), modifiers);
        m_held.remove(chord);
    }
    xcb_flush(x11::connection());
}

void X11Shortcuts::tellOutcomes()
{
    QList<Outcome> outcomes;
    for (const Shortcut &shortcut : std::as_const(m_shortcuts)) {
        const auto chord = chordOf(shortcut);
        outcomes.append(
            { shortcut.id, chord && m_held.contains(*chord) && m_wanted.value(*chord) == shortcut.id });
    }
    const bool isNew = std::exchange(m_told, outcomes) != outcomes;
    if (std::exchange(m_isAnswerOwed, false) || isNew)
        Q_EMIT answered(outcomes);
}

bool X11Shortcuts::nativeEventFilter(const QByteArray &eventType, void *message, qintptr * /*result*/)
{
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    const quint8 type = event->response_type & 0x7f;
    if (type == XCB_KEY_PRESS)
        return takePress(*reinterpret_cast<const xcb_key_press_event_t *>(event));
    if (type == XCB_KEY_RELEASE) {
        const auto *release = reinterpret_cast<const xcb_key_release_event_t *>(event);
        m_keysDown.remove(release->detail);
        m_lastRelease = { release->detail, release->time };
    } else if (type == XCB_MAPPING_NOTIFY
               || (type == m_xkbEvents && m_xkbEvents != 0
                   && (event->pad0 == xkbMapNotify || event->pad0 == xkbNewKeyboardNotify))) {
        learnModifiersLater();
    }
    return false;
}

bool X11Shortcuts::takePress(const xcb_key_press_event_t &press)
{
    if (press.event != x11::root())
        return false;
    // A key that repeats is released and pressed in the same moment, or only pressed where the connection
    // asked for that. The first is true of one that was down before it was grabbed, too.
    const bool isRepeat = m_keysDown.contains(press.detail)
        || m_lastRelease == std::pair<quint8, xcb_timestamp_t>(press.detail, press.time);
    m_keysDown.insert(press.detail);
    const auto shortcutModifiers =
        quint16(XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | m_masks.option | m_masks.command);
    const Chord chord { press.detail, quint16(press.state & shortcutModifiers) };
    if (!isRepeat && m_held.contains(chord))
        Q_EMIT pressed(m_wanted.value(chord));
    return true;
}

void X11Shortcuts::learnModifiersLater()
{
    // a changed layout is told in many events
    if (!std::exchange(m_isLearningPlanned, true))
        QMetaObject::invokeMethod(this, &X11Shortcuts::learnModifiers, Qt::QueuedConnection);
}

void X11Shortcuts::learnModifiers()
{
    m_isLearningPlanned = false;
    const ModifierMasks masks = askModifierMasks();
    if (masks == m_masks)
        return;
    letGo(m_held.values());
    m_masks = masks;
    grab();
}

} // namespace kestrel
