#pragma once
#include <QRect>
#include <QRegion>

namespace kestrel {

/// The pixels of `rect` whose centres lie inside its rounded corners: the shape of a window that nothing
/// shines through.
[[nodiscard]] QRegion roundedRegion(const QRect &rect, int radius);

} // namespace kestrel
