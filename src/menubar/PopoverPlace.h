#pragma once
#include <QPoint>
#include <QRect>
#include <QSize>

namespace kestrel {

/// Where the agenda opens, in the coordinates of the screens. It points at the panel: from the panel's edge
/// it opens into the screen, and there it stays when its height changes.
struct PopoverPlace
{
    QRect visibleFrame;
    QPoint anchor;
    bool opensDownwards = true;

    /// `anchor` is a point in or near the panel; the upper half of the screen belongs to a panel above.
    [[nodiscard]] static PopoverPlace at(QPoint anchor, const QRect &visibleFrame);
    /// Nobody clicked: in the right corner on the side where the panel is, above when there is none.
    [[nodiscard]] static PopoverPlace inCorner(const QRect &frame, const QRect &visibleFrame);

    [[nodiscard]] int maximumHeight() const;
    /// Centred below or above the anchor, as far as the visible frame lets it.
    [[nodiscard]] QPoint topLeft(QSize size) const;

    friend bool operator==(const PopoverPlace &, const PopoverPlace &) = default;
};

} // namespace kestrel
