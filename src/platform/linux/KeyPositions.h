#pragma once
#include <QByteArray>
#include <QtGlobal>
#include <optional>

/// Where a key sits on the keyboard, in the three ways of naming that: the stored key code
/// (ShortcutBackend.h), the kernel's code of the key, and the X keycode that every X server and Wayland
/// compositor derives from it. The layout that a person writes with changes none of them.
namespace kestrel {

/// Of an X keycode (a key event's native scan code, on Wayland too): <AC01>, the A of the US keyboard, is 38.
[[nodiscard]] std::optional<quint32> keyCodeOfXKeycode(quint32 xKeycode);
/// Nothing for codes that no keyboard here has.
[[nodiscard]] std::optional<quint8> xKeycodeOf(quint32 keyCode);
/// What the US layout puts there, by its name in xkbcommon ("a", "Return", "KP_Add"); nothing where that
/// names no key.
[[nodiscard]] std::optional<QByteArray> usKeysymName(quint32 keyCode);

} // namespace kestrel
