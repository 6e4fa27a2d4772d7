#include "alerts/CardPlacement.h"

namespace kestrel {

QPoint cardOrigin(Preferences::ScreenPosition position, const QRect &frame, QSize size, int offset)
{
    using enum Preferences::ScreenPosition;
    constexpr int margin = 16;
    // QRect's right() and bottom() lie one pixel short of the edge
    const int atLeft = frame.x() + margin;
    const int atCenter = frame.x() + (frame.width() - size.width()) / 2;
    const int atRight = frame.x() + frame.width() - size.width() - margin;
    const int fromTop = frame.y() + margin + offset;
    const int fromBottom = frame.y() + frame.height() - size.height() - margin - offset;
    switch (position) {
    case TopLeft:
        return { atLeft, fromTop };
    case TopCenter:
        return { atCenter, fromTop };
    case TopRight:
        return { atRight, fromTop };
    case BottomLeft:
        return { atLeft, fromBottom };
    case BottomCenter:
        return { atCenter, fromBottom };
    case BottomRight:
        return { atRight, fromBottom };
    }
    Q_UNREACHABLE();
}

} // namespace kestrel
