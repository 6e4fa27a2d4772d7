#include "menubar/PopoverPlace.h"
#include <algorithm>

namespace kestrel {

namespace {
constexpr int gap = 4;
}

PopoverPlace PopoverPlace::at(QPoint anchor, const QRect &visibleFrame)
{
    return { visibleFrame, anchor, anchor.y() <= visibleFrame.center().y() };
}

PopoverPlace PopoverPlace::inCorner(const QRect &frame, const QRect &visibleFrame)
{
    const int above = visibleFrame.top() - frame.top();
    const int below = frame.bottom() - visibleFrame.bottom();
    return { visibleFrame, below > above ? visibleFrame.bottomRight() : visibleFrame.topRight(),
             below <= above };
}

int PopoverPlace::maximumHeight() const
{
    return visibleFrame.height() - 2 * gap;
}

QPoint PopoverPlace::topLeft(QSize size) const
{
    const int rightmost = visibleFrame.right() + 1 - gap - size.width();
    const int x = std::max(std::min(anchor.x() - size.width() / 2, rightmost), visibleFrame.left() + gap);
    const int y = opensDownwards ? visibleFrame.top() + gap : visibleFrame.bottom() + 1 - gap - size.height();
    return { x, std::max(y, visibleFrame.top() + gap) };
}

} // namespace kestrel
