#pragma once
#include "hotkeys/HotkeyAction.h"
#include <QString>
#include <span>

namespace kestrel {

/// Something that can be done in a Meet call.
struct MeetAction
{
    QString label; ///< for logs and the shortcut's name ("share-screen")
    HotkeyAction preference; ///< whose shortcut does it
    QString js; ///< the page script; empty: none
    bool activate; ///< brings the Meet tab to the front
};

/// All of them, in the order in which they are registered and looked up. Made at the first call.
[[nodiscard]] std::span<const MeetAction> meetActions();

} // namespace kestrel
