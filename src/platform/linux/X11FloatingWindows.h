#pragma once
#include "platform/FloatingWindows.h"
#include "platform/linux/X11Compositor.h"
#include <QHash>
#include <memory>

namespace kestrel {

class X11Presses;

/// Floating windows under X11's window managers. Where no compositor runs, a window is cut to its input
/// region, since nothing could shine through around it. The windows may go at any time. Main thread only.
class X11FloatingWindows final : public FloatingWindows
{
    Q_OBJECT
public:
    explicit X11FloatingWindows(QObject *parent = nullptr);
    ~X11FloatingWindows() override;

    [[nodiscard]] WindowingCondition condition() const override;
    [[nodiscard]] bool canPlaceWindows() const override { return true; }
    void prepare(QWindow &window, Kind kind) override;
    void shown(QWindow &window, Kind kind) override;
    void takeFocus(QWindow &window) override;
    void setInputRegion(QWindow &window, const QRegion &region) override;
    void setBlurRegion(QWindow &window, const QRegion &region) override;

    /// Not under XWayland: presses on Wayland windows never reach it.
    [[nodiscard]] bool canWatchPresses() const override;
    void watchPresses(bool watch) override;

private:
    void cutToShape(QWindow &window) const;

    X11Compositor m_compositor;
    QHash<QWindow *, QRegion> m_inputRegions;
    int m_watchers = 0;
    std::unique_ptr<X11Presses> m_presses;
};

} // namespace kestrel
