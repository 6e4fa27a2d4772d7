#pragma once
#include "streamdeck/MeetStateSnapshot.h"
#include <QLatin1StringView>
#include <optional>
#include <span>

namespace kestrel {

/// What a key shows. Absent: there is no call, or no Kestrel.
enum class KeyFace { On, Off, Absent };

/// One action that the plug-in's manifest offers.
struct DeckAction
{
    QLatin1StringView uuid;
    QLatin1StringView command; ///< for the bridge; empty for the one that starts a program
    QLatin1StringView image; ///< images/<image>-on, -off and -absent
    bool MeetStateSnapshot::*isOn = nullptr; ///< what it switches, if anything

    [[nodiscard]] bool isSwitch() const { return isOn != nullptr; }
    /// The face for what the bridge said last, if anything.
    [[nodiscard]] KeyFace face(const std::optional<MeetStateSnapshot> &snapshot) const;
};

[[nodiscard]] std::span<const DeckAction> deckActions();
/// Null for one that this plug-in does not know.
[[nodiscard]] const DeckAction *deckAction(QStringView uuid);

} // namespace kestrel
