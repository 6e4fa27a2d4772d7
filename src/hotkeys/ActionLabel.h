#pragma once
#include "hotkeys/HotkeyAction.h"
#include <QString>

namespace kestrel {

/// What the action does, in the person's language: for the settings, ours and the desktop's.
[[nodiscard]] QString actionLabel(HotkeyAction action);

} // namespace kestrel
