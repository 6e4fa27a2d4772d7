#include "streamdeck/plugin/DeckActions.h"
#include <QStringView>
#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

using State = MeetStateSnapshot;

constexpr std::array<DeckAction, 16> actions { {
    { "app.kestrel.kestrel.mute"_L1, "meetMute"_L1, "mute"_L1, &State::micOn },
    { "app.kestrel.kestrel.camera"_L1, "meetVideo"_L1, "camera"_L1, &State::cameraOn },
    { "app.kestrel.kestrel.hand"_L1, "meetHand"_L1, "hand"_L1, &State::handRaised },
    { "app.kestrel.kestrel.share"_L1, "meetShareScreen"_L1, "share"_L1, &State::sharing },
    { "app.kestrel.kestrel.leave"_L1, "meetLeave"_L1, "leave"_L1 },
    { "app.kestrel.kestrel.react.thumbs"_L1, "meetReactThumbs"_L1, "thumbs"_L1 },
    { "app.kestrel.kestrel.react.heart"_L1, "meetReactHeart"_L1, "heart"_L1 },
    { "app.kestrel.kestrel.react.party"_L1, "meetReactParty"_L1, "party"_L1 },
    { "app.kestrel.kestrel.react.clap"_L1, "meetReactClap"_L1, "clap"_L1 },
    { "app.kestrel.kestrel.react.laugh"_L1, "meetReactLaugh"_L1, "laugh"_L1 },
    { "app.kestrel.kestrel.react.surprise"_L1, "meetReactSurprise"_L1, "surprise"_L1 },
    { "app.kestrel.kestrel.react.sad"_L1, "meetReactSad"_L1, "sad"_L1 },
    { "app.kestrel.kestrel.react.thinking"_L1, "meetReactThinking"_L1, "thinking"_L1 },
    { "app.kestrel.kestrel.react.thumbsdown"_L1, "meetReactThumbsDown"_L1, "thumbsdown"_L1 },
    { "app.kestrel.kestrel.react.love"_L1, "meetReactLove"_L1, "love"_L1 },
    { "app.kestrel.kestrel.next"_L1, ""_L1, "next"_L1 },
} };

} // namespace

KeyFace DeckAction::face(const std::optional<MeetStateSnapshot> &snapshot) const
{
    if (command.isEmpty())
        return KeyFace::On;
    if (!snapshot || !snapshot->inMeeting)
        return KeyFace::Absent;
    return !isSwitch() || *snapshot.*isOn ? KeyFace::On : KeyFace::Off;
}

std::span<const DeckAction> deckActions()
{
    return actions;
}

const DeckAction *deckAction(QStringView uuid)
{
    const auto found = std::ranges::find_if(actions, [=](const auto &action) { return action.uuid == uuid; });
    return found == actions.end() ? nullptr : &*found;
}

} // namespace kestrel
