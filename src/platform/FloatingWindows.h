#pragma once
#include <QObject>
#include <QRegion>
#include <QWindow>

namespace kestrel {

/// What windows stand on.
struct WindowingCondition
{
    enum class System { None, X11, XWayland, Wayland };

    System system = System::None;
    QString windowManager; ///< empty where it is not known, or none runs

    friend bool operator==(const WindowingCondition &, const WindowingCondition &) = default;
};

/// What the window system must be told about windows that float over everything.
class FloatingWindows : public QObject
{
    Q_OBJECT
public:
    enum class Kind {
        Card, ///< above everything, on all desktops, never takes the focus unless clicked
        Popover, ///< takes the focus and goes when it loses it
        Hud, ///< as a card, and the mouse goes through it
    };

    using QObject::QObject;

    [[nodiscard]] virtual WindowingCondition condition() const = 0;
    /// False where a client cannot place its windows (Wayland without XWayland).
    [[nodiscard]] virtual bool canPlaceWindows() const = 0;
    /// Once a window, before it is first shown: flags and properties of its kind.
    virtual void prepare(QWindow &window, Kind kind) = 0;
    /// After each show: what window managers reset when they map a window.
    virtual void shown(QWindow &window, Kind kind) = 0;
    /// Gives the keyboard to a card that was clicked.
    virtual void takeFocus(QWindow &window) = 0;
    /// Clicks outside `region` (in the window's own coordinates) reach what is below; empty: the whole
    /// window. Without a compositor the window is cut to it, which for a HUD is all it does.
    virtual void setInputRegion(QWindow &window, const QRegion &region) = 0;
    /// Asks for blur behind `region` where the window manager offers it.
    virtual void setBlurRegion(QWindow &window, const QRegion &region) = 0;

    /// Whether presses anywhere on the screen can be heard (raw button events).
    [[nodiscard]] virtual bool canWatchPresses() const = 0;
    /// Calls count: presses are heard until every true was taken back by a false.
    virtual void watchPresses(bool watch) = 0;

Q_SIGNALS:
    /// While presses are watched: one, anywhere, in global coordinates.
    void pressed(QPoint position);
};

} // namespace kestrel
