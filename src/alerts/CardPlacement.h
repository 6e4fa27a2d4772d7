#pragma once
#include "preferences/Preferences.h"
#include <QPoint>
#include <QRect>
#include <QSize>

namespace kestrel {

/// Between two cards of a stack.
constexpr int cardSpacing = 12;

/// Where the window of a card of `size` stands in `frame`, 16 pixels from its edges; `offset` is how far the
/// cards before it reach. Stacks grow away from the edge that `position` names. y grows downwards.
[[nodiscard]] QPoint cardOrigin(Preferences::ScreenPosition position, const QRect &frame, QSize size,
                                int offset);

} // namespace kestrel
