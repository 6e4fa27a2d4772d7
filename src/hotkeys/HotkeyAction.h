#pragma once
#include "hotkeys/Hotkey.h"
#include <QLatin1StringView>
#include <array>
#include <optional>

namespace kestrel {

/// Everything that can be bound to a global shortcut.
enum class HotkeyAction {
    join,
    meetMute,
    meetVideo,
    meetHand,
    meetFocus,
    meetShareScreen,
    meetLeave,
    meetReactThumbs,
    meetReactHeart,
    meetReactParty,
    meetReactClap,
    meetReactLaugh,
    meetReactSurprise,
    meetReactSad,
    meetReactThinking,
    meetReactThumbsDown,
    meetReactLove,
};

/// What is fixed about one action.
struct HotkeyActionRow
{
    HotkeyAction action;
    QLatin1StringView rawValue; ///< the case's name
    QLatin1StringView preferenceKey;
    Hotkey defaultHotkey;
    quint32 identifier; ///< of its registration
};

/// All actions in declaration order.
[[nodiscard]] const std::array<HotkeyActionRow, 17> &hotkeyActions();
[[nodiscard]] const HotkeyActionRow &row(HotkeyAction action);
[[nodiscard]] std::optional<HotkeyAction> hotkeyActionFromRaw(QStringView rawValue);

} // namespace kestrel
