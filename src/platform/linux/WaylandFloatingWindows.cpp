#include "platform/linux/WaylandFloatingWindows.h"
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace kestrel {

WindowingCondition WaylandFloatingWindows::condition() const
{
    using enum WindowingCondition::System;
    return { QGuiApplication::platformName().startsWith("wayland"_L1) ? Wayland : None, {} };
}

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
