#include "platform/linux/KeyPositions.h"
#include <algorithm>
#include <iterator>

namespace kestrel {

namespace {

struct KeyPosition
{
    quint32 keyCode;
    quint32 kernelCode; ///< KEY_A and the like of linux/input-event-codes.h
    const char *usKeysym; ///< null where the US layout has nothing of its own
};

// clang-format off
constexpr KeyPosition positions[] = {
    // letters
    { 0, 30, "a" }, { 1, 31, "s" }, { 2, 32, "d" }, { 3, 33, "f" }, { 4, 35, "h" }, { 5, 34, "g" },
    { 6, 44, "z" }, { 7, 45, "x" }, { 8, 46, "c" }, { 9, 47, "v" }, { 11, 48, "b" }, { 12, 16, "q" },
    { 13, 17, "w" }, { 14, 18, "e" }, { 15, 19, "r" }, { 16, 21, "y" }, { 17, 20, "t" }, { 31, 24, "o" },
    { 32, 22, "u" }, { 34, 23, "i" }, { 35, 25, "p" }, { 37, 38, "l" }, { 38, 36, "j" }, { 40, 37, "k" },
    { 45, 49, "n" }, { 46, 50, "m" },
    // digits
    { 18, 2, "1" }, { 19, 3, "2" }, { 20, 4, "3" }, { 21, 5, "4" }, { 23, 6, "5" }, { 22, 7, "6" },
    { 26, 8, "7" }, { 28, 9, "8" }, { 25, 10, "9" }, { 29, 11, "0" },
    // punctuation, and the key that only ISO keyboards have
    { 24, 13, "equal" }, { 27, 12, "minus" }, { 30, 27, "bracketright" }, { 33, 26, "bracketleft" },
    { 39, 40, "apostrophe" }, { 41, 39, "semicolon" }, { 42, 43, "backslash" }, { 43, 51, "comma" },
    { 44, 53, "slash" }, { 47, 52, "period" }, { 50, 41, "grave" }, { 10, 86, "less" },
    // special keys
    { 36, 28, "Return" }, { 48, 15, "Tab" }, { 49, 57, "space" }, { 51, 14, "BackSpace" },
    { 53, 1, "Escape" }, { 123, 105, "Left" }, { 124, 106, "Right" }, { 125, 108, "Down" },
    { 126, 103, "Up" }, { 115, 102, "Home" }, { 119, 107, "End" }, { 116, 104, "Page_Up" },
    { 121, 109, "Page_Down" }, { 114, 110, "Insert" }, { 117, 111, "Delete" }, { 110, 127, "Menu" },
    // keypad
    { 65, 83, "KP_Decimal" }, { 67, 55, "KP_Multiply" }, { 69, 78, "KP_Add" }, { 71, 69, "Num_Lock" },
    { 75, 98, "KP_Divide" }, { 76, 96, "KP_Enter" }, { 78, 74, "KP_Subtract" }, { 81, 117, "KP_Equal" },
    { 82, 82, "KP_0" }, { 83, 79, "KP_1" }, { 84, 80, "KP_2" }, { 85, 81, "KP_3" }, { 86, 75, "KP_4" },
    { 87, 76, "KP_5" }, { 88, 77, "KP_6" }, { 89, 71, "KP_7" }, { 91, 72, "KP_8" }, { 92, 73, "KP_9" },
    { 95, 121, nullptr },
    // function keys
    { 122, 59, "F1" }, { 120, 60, "F2" }, { 99, 61, "F3" }, { 118, 62, "F4" }, { 96, 63, "F5" },
    { 97, 64, "F6" }, { 98, 65, "F7" }, { 100, 66, "F8" }, { 101, 67, "F9" }, { 109, 68, "F10" },
    { 103, 87, "F11" }, { 111, 88, "F12" }, { 105, 183, "XF86Tools" }, { 107, 184, "XF86Launch5" },
    { 113, 185, "XF86Launch6" }, { 106, 186, "XF86Launch7" }, { 64, 187, "XF86Launch8" },
    { 79, 188, "XF86Launch9" }, { 80, 189, nullptr }, { 90, 190, "XF86AudioMicMute" },
    // sound keys, and those of Japanese keyboards
    { 72, 115, "XF86AudioRaiseVolume" }, { 73, 114, "XF86AudioLowerVolume" }, { 74, 113, "XF86AudioMute" },
    { 93, 124, nullptr }, { 94, 89, nullptr },
};
// clang-format on

/// X keycodes below 8 do not exist, so the kernel's begin there.
constexpr quint32 firstXKeycode = 8;

const KeyPosition *find(quint32 keyCode)
{
    const auto *found = std::ranges::find(positions, keyCode, &KeyPosition::keyCode);
    return found == std::end(positions) ? nullptr : found;
}

} // namespace

std::optional<quint32> keyCodeOfXKeycode(quint32 xKeycode)
{
    const auto *found = std::ranges::find(positions, xKeycode - firstXKeycode, &KeyPosition::kernelCode);
    if (found == std::end(positions))
        return {};
    return found->keyCode;
}

std::optional<quint8> xKeycodeOf(quint32 keyCode)
{
    const KeyPosition *position = find(keyCode);
    if (!position)
        return {};
    return quint8(position->kernelCode + firstXKeycode);
}

std::optional<QByteArray> usKeysymName(quint32 keyCode)
{
    const KeyPosition *position = find(keyCode);
    if (!position || !position->usKeysym)
        return {};
    return position->usKeysym;
}

} // namespace kestrel
