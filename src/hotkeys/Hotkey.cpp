#include "hotkeys/Hotkey.h"
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <iterator>
#include <limits>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

struct KeyLabel
{
    quint32 keyCode;
    const char16_t *label;
};

// clang-format off
constexpr KeyLabel keyLabels[] = {
    // letters
    { 0, u"A" }, { 1, u"S" }, { 2, u"D" }, { 3, u"F" }, { 4, u"H" }, { 5, u"G" }, { 6, u"Z" }, { 7, u"X" },
    { 8, u"C" }, { 9, u"V" }, { 11, u"B" }, { 12, u"Q" }, { 13, u"W" }, { 14, u"E" }, { 15, u"R" },
    { 16, u"Y" }, { 17, u"T" }, { 31, u"O" }, { 32, u"U" }, { 34, u"I" }, { 35, u"P" }, { 37, u"L" },
    { 38, u"J" }, { 40, u"K" }, { 45, u"N" }, { 46, u"M" },
    // digits
    { 18, u"1" }, { 19, u"2" }, { 20, u"3" }, { 21, u"4" }, { 23, u"5" }, { 22, u"6" }, { 26, u"7" },
    { 28, u"8" }, { 25, u"9" }, { 29, u"0" },
    // special keys
    { 36, u"↩" }, { 48, u"⇥" }, { 49, u"Space" }, { 51, u"⌫" }, { 53, u"⎋" }, { 123, u"←" }, { 124, u"→" },
    { 125, u"↓" }, { 126, u"↑" },
    // keypad
    { 65, u"Num ." }, { 67, u"Num ×" }, { 69, u"Num +" }, { 71, u"Num ⌧" }, { 75, u"Num ÷" },
    { 76, u"Num ↩" }, { 78, u"Num −" }, { 81, u"Num =" }, { 82, u"Num 0" }, { 83, u"Num 1" },
    { 84, u"Num 2" }, { 85, u"Num 3" }, { 86, u"Num 4" }, { 87, u"Num 5" }, { 88, u"Num 6" },
    { 89, u"Num 7" }, { 91, u"Num 8" }, { 92, u"Num 9" },
    // function keys
    { 122, u"F1" }, { 120, u"F2" }, { 99, u"F3" }, { 118, u"F4" }, { 96, u"F5" }, { 97, u"F6" },
    { 98, u"F7" }, { 100, u"F8" }, { 101, u"F9" }, { 109, u"F10" }, { 103, u"F11" }, { 111, u"F12" },
};
// clang-format on

std::optional<quint32> unsignedMember(const QJsonObject &object, QLatin1StringView name)
{
    // a number that is not a whole 64-bit one reads as the stand-in, which is out of range too
    const qint64 value = object.value(name).toInteger(-1);
    if (value < 0 || value > std::numeric_limits<quint32>::max())
        return {};
    return static_cast<quint32>(value);
}

} // namespace

QString Hotkey::raw() const
{
    return uR"({"keyCode":%1,"modifiers":%2})"_s.arg(keyCode).arg(modifiers);
}

std::optional<Hotkey> Hotkey::fromRaw(const QString &raw)
{
    const QJsonDocument document = QJsonDocument::fromJson(raw.toUtf8());
    if (!document.isObject())
        return {};
    const auto keyCode = unsignedMember(document.object(), "keyCode"_L1);
    const auto modifiers = unsignedMember(document.object(), "modifiers"_L1);
    if (!keyCode || !modifiers)
        return {};
    return Hotkey { *keyCode, *modifiers };
}

QStringList Hotkey::displayParts() const
{
    QStringList parts;
    if (modifiers & Modifier::Control)
        parts.append(u"⌃"_s);
    if (modifiers & Modifier::Option)
        parts.append(u"⌥"_s);
    if (modifiers & Modifier::Shift)
        parts.append(u"⇧"_s);
    if (modifiers & Modifier::Command)
        parts.append(u"⌘"_s);
    parts.append(keyLabel(keyCode));
    return parts;
}

QString keyLabel(quint32 keyCode)
{
    const auto found = std::ranges::find(keyLabels, keyCode, &KeyLabel::keyCode);
    return found == std::end(keyLabels) ? u"?"_s : QString::fromUtf16(found->label);
}

} // namespace kestrel
