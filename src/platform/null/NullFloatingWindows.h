#pragma once
#include "platform/FloatingWindows.h"

namespace kestrel {

/// Where there is no way to place a window, and nothing to tell the window system.
class NullFloatingWindows final : public FloatingWindows
{
    Q_OBJECT
public:
    using FloatingWindows::FloatingWindows;

    [[nodiscard]] WindowingCondition condition() const override { return {}; }
    [[nodiscard]] bool canPlaceWindows() const override { return false; }
    void prepare(QWindow & /*window*/, Kind /*kind*/) override { }
    void shown(QWindow & /*window*/, Kind /*kind*/) override { }
    void takeFocus(QWindow & /*window*/) override { }
    void setInputRegion(QWindow & /*window*/, const QRegion & /*region*/) override { }
    void setBlurRegion(QWindow & /*window*/, const QRegion & /*region*/) override { }
    [[nodiscard]] bool canWatchPresses() const override { return false; }
    void watchPresses(bool /*watch*/) override { }
};

} // namespace kestrel
