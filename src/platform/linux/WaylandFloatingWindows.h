#pragma once
#include "platform/FloatingWindows.h"

namespace kestrel {

/// Where the window system alone decides on places and stacking: Wayland without XWayland, and Qt's platforms
/// without a screen. The popover works as a plain window; cards are not to be shown at all.
class WaylandFloatingWindows final : public FloatingWindows
{
    Q_OBJECT
public:
    using FloatingWindows::FloatingWindows;

    [[nodiscard]] WindowingCondition condition() const override;
    [[nodiscard]] bool canPlaceWindows() const override { return false; }
    void prepare(QWindow &window, Kind kind) override;
    void shown(QWindow & /*window*/, Kind /*kind*/) override { }
    void takeFocus(QWindow &window) override { window.requestActivate(); }
    void setInputRegion(QWindow &window, const QRegion &region) override { window.setMask(region); }
    void setBlurRegion(QWindow & /*window*/, const QRegion & /*region*/) override { }
    [[nodiscard]] bool canWatchPresses() const override { return false; }
    void watchPresses(bool /*watch*/) override { }
};

} // namespace kestrel
