#include "hotkeys/ActionLabel.h"

namespace kestrel {

QString actionLabel(HotkeyAction action)
{
    switch (action) {
    case HotkeyAction::join:
        return qtTrId("settings.join_shortcut.keys");
    case HotkeyAction::meetMute:
        return qtTrId("settings.meet_controls.mute");
    case HotkeyAction::meetVideo:
        return qtTrId("settings.meet_controls.video");
    case HotkeyAction::meetHand:
        return qtTrId("settings.meet_controls.hand");
    case HotkeyAction::meetFocus:
        return qtTrId("settings.meet_controls.focus");
    case HotkeyAction::meetShareScreen:
        return qtTrId("settings.meet_controls.share");
    case HotkeyAction::meetLeave:
        return qtTrId("settings.meet_controls.leave");
    case HotkeyAction::meetReactThumbs:
        return qtTrId("settings.meet_controls.react_thumbs");
    case HotkeyAction::meetReactHeart:
        return qtTrId("settings.meet_controls.react_heart");
    case HotkeyAction::meetReactParty:
        return qtTrId("settings.meet_controls.react_party");
    case HotkeyAction::meetReactClap:
        return qtTrId("settings.meet_controls.react_clap");
    case HotkeyAction::meetReactLaugh:
        return qtTrId("settings.meet_controls.react_laugh");
    case HotkeyAction::meetReactSurprise:
        return qtTrId("settings.meet_controls.react_surprise");
    case HotkeyAction::meetReactSad:
        return qtTrId("settings.meet_controls.react_sad");
    case HotkeyAction::meetReactThinking:
        return qtTrId("settings.meet_controls.react_thinking");
    case HotkeyAction::meetReactThumbsDown:
        return qtTrId("settings.meet_controls.react_thumbsdown");
    case HotkeyAction::meetReactLove:
        return qtTrId("settings.meet_controls.react_love");
    }
    return {};
}

} // namespace kestrel
