#pragma once
#include "hotkeys/HotkeyAction.h"
#include <QString>

namespace kestrel {

/// What the HUD flashes after an action: a symbol's name or an emoji; nothing when both are empty.
struct MeetHUDContent
{
    QString symbol;
    QString emoji;

    friend bool operator==(const MeetHUDContent &, const MeetHUDContent &) = default;
};

/// The state after the action. `before` is the pressed button's label as it was, which says what the press
/// did; empty when no button was pressed.
[[nodiscard]] MeetHUDContent hudContent(HotkeyAction action, const QString &before);

/// What a symbol of the HUD says, for those who cannot see it.
[[nodiscard]] QString hudSymbolText(const QString &symbol);

} // namespace kestrel
