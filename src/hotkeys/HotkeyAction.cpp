#include "hotkeys/HotkeyAction.h"
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr quint32 meet = Modifier::Shift | Modifier::Option;
constexpr quint32 reaction = Modifier::Shift | Modifier::Option | Modifier::Control;

constexpr std::array<HotkeyActionRow, 17> rows { {
    { HotkeyAction::join, "join"_L1, "hotkey.join"_L1, { 38, Modifier::Command | Modifier::Shift }, 1 },
    { HotkeyAction::meetMute, "meetMute"_L1, "hotkey.meet.mute"_L1, { 46, meet }, 2 },
    { HotkeyAction::meetVideo, "meetVideo"_L1, "hotkey.meet.video"_L1, { 8, meet }, 3 },
    { HotkeyAction::meetHand, "meetHand"_L1, "hotkey.meet.hand"_L1, { 4, meet }, 4 },
    { HotkeyAction::meetFocus, "meetFocus"_L1, "hotkey.meet.focus"_L1, { 3, meet }, 5 },
    { HotkeyAction::meetShareScreen, "meetShareScreen"_L1, "hotkey.meet.share"_L1, { 1, meet }, 16 },
    { HotkeyAction::meetLeave, "meetLeave"_L1, "hotkey.meet.leave"_L1, { 37, meet }, 17 },
    { HotkeyAction::meetReactThumbs,
      "meetReactThumbs"_L1,
      "hotkey.meet.react.thumbs"_L1,
      { 18, reaction },
      6 },
    { HotkeyAction::meetReactHeart, "meetReactHeart"_L1, "hotkey.meet.react.heart"_L1, { 19, reaction }, 7 },
    { HotkeyAction::meetReactParty, "meetReactParty"_L1, "hotkey.meet.react.party"_L1, { 20, reaction }, 8 },
    { HotkeyAction::meetReactClap, "meetReactClap"_L1, "hotkey.meet.react.clap"_L1, { 21, reaction }, 9 },
    { HotkeyAction::meetReactLaugh, "meetReactLaugh"_L1, "hotkey.meet.react.laugh"_L1, { 23, reaction }, 10 },
    { HotkeyAction::meetReactSurprise,
      "meetReactSurprise"_L1,
      "hotkey.meet.react.surprise"_L1,
      { 22, reaction },
      11 },
    { HotkeyAction::meetReactSad, "meetReactSad"_L1, "hotkey.meet.react.sad"_L1, { 26, reaction }, 12 },
    { HotkeyAction::meetReactThinking,
      "meetReactThinking"_L1,
      "hotkey.meet.react.thinking"_L1,
      { 28, reaction },
      13 },
    { HotkeyAction::meetReactThumbsDown,
      "meetReactThumbsDown"_L1,
      "hotkey.meet.react.thumbsdown"_L1,
      { 25, reaction },
      14 },
    { HotkeyAction::meetReactLove, "meetReactLove"_L1, "hotkey.meet.react.love"_L1, { 29, reaction }, 15 },
} };

} // namespace

const std::array<HotkeyActionRow, 17> &hotkeyActions()
{
    return rows;
}

const HotkeyActionRow &row(HotkeyAction action)
{
    return *std::ranges::find(rows, action, &HotkeyActionRow::action);
}

std::optional<HotkeyAction> hotkeyActionFromRaw(QStringView rawValue)
{
    const auto found = std::ranges::find_if(rows, [=](const auto &row) { return row.rawValue == rawValue; });
    if (found == rows.end())
        return {};
    return found->action;
}

} // namespace kestrel
