#pragma once
#include "platform/Modifier.h"
#include <QString>
#include <QStringList>
#include <optional>

namespace kestrel {

/// A shortcut. Key codes stand for positions of the US keyboard, in the numbering that the stored form fixes
/// (38 is J, 46 is M), not for what a layout prints on them.
struct Hotkey
{
    quint32 keyCode = 0;
    quint32 modifiers = 0;

    /// Both zero: deliberately no shortcut.
    [[nodiscard]] bool isNone() const { return keyCode == 0 && modifiers == 0; }

    /// The stored form: {"keyCode":46,"modifiers":2560}.
    [[nodiscard]] QString raw() const;
    /// Nothing when the text is not such an object of two unsigned 32-bit integers.
    [[nodiscard]] static std::optional<Hotkey> fromRaw(const QString &raw);

    /// The key caps: modifiers in their fixed order, then the key.
    [[nodiscard]] QStringList displayParts() const;

    friend bool operator==(const Hotkey &, const Hotkey &) = default;
};

/// What stands on a key; "?" for keys without a label of ours.
[[nodiscard]] QString keyLabel(quint32 keyCode);

} // namespace kestrel
