#include "platform/linux/WaylandFloatingWindows.h"

namespace kestrel {

void WaylandFloatingWindows::prepare(QWindow &window, Kind kind)
{
    Qt::WindowFlags flags = Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
    if (kind != Kind::Popover)
        flags |= Qt::WindowDoesNotAcceptFocus;
    if (kind == Kind::Hud)
        flags |= Qt::WindowTransparentForInput;
    window.setFlags(flags);
}

} // namespace kestrel
