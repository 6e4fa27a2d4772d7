#pragma once
#include <QList>
#include <QRect>

namespace kestrel {

/// One edge of the X screen that a panel keeps for itself, in device pixels.
struct X11Strut
{
    enum class Edge { Left, Right, Top, Bottom };
    Edge edge = Edge::Left;
    int depth = 0; ///< from the edge of the whole X screen, over all monitors
    int from = 0; ///< along the edge, both ends included
    int to = 0;

    friend bool operator==(const X11Strut &, const X11Strut &) = default;
};

/// What the struts leave of one monitor. A strut that covers a monitor from side to side belongs to a panel
/// on a monitor behind it, and takes nothing from this one.
[[nodiscard]] QRect withoutStruts(QRect monitor, QSize xScreen, const QList<X11Strut> &struts);

/// Those of all windows that the window manager knows. Only where Qt runs on X11.
[[nodiscard]] QList<X11Strut> readStruts(QSize xScreen);

} // namespace kestrel
