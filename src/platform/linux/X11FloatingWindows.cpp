#include "platform/linux/X11FloatingWindows.h"
#include "platform/linux/X11.h"
#include "platform/linux/X11Presses.h"
#include <QCursor>
#include <QVariant>
#include <cmath>
#include <xcb/shape.h>
#include <xcb/xinput.h>

namespace kestrel {

namespace {

constexpr quint32 allDesktops = 0xFFFFFFFF;
constexpr quint32 fromApplication = 1; ///< the source of a request (EWMH)
constexpr quint32 fromPerson = 2;
constexpr quint32 addState = 1;

/// Whether the window manager itself keeps a notification above a full-screen window. The others do not, or
/// put it somewhere else, and must not know of it at all. Inside Wayland none places or raises an X window as
/// it asks for.
bool managesNotifications()
{
    const QByteArray manager = x11::windowManagerName();
    return !x11::isInsideWayland()
        && (manager == "KWin" || manager == "GNOME Shell" || manager.startsWith("Mutter"));
}

QList<QRect> deviceRectangles(const QWindow &window, const QRegion &region)
{
    const qreal ratio = window.devicePixelRatio();
    QList<QRect> rectangles;
    for (const QRect &rectangle : region) {
        const QPointF from = QPointF(rectangle.topLeft()) * ratio;
        const QPointF to =
            QPointF(rectangle.topLeft() + QPoint(rectangle.width(), rectangle.height())) * ratio;
        rectangles.append(QRect(QPoint(int(std::floor(from.x())), int(std::floor(from.y()))),
                                QPoint(int(std::ceil(to.x())) - 1, int(std::ceil(to.y())) - 1)));
    }
    return rectangles;
}

} // namespace

X11FloatingWindows::X11FloatingWindows(QObject *parent)
    : FloatingWindows(parent)
{
    connect(&m_compositor, &X11Compositor::isRunningChanged, this, [this] {
        for (QWindow *window : m_inputRegions.keys())
            cutToShape(*window);
    });
}

X11FloatingWindows::~X11FloatingWindows() = default;

WindowingCondition X11FloatingWindows::condition() const
{
    using enum WindowingCondition::System;
    return { x11::isInsideWayland() ? XWayland : X11, QString::fromUtf8(x11::windowManagerName()) };
}

void X11FloatingWindows::prepare(QWindow &window, Kind kind)
{
    Qt::WindowFlags flags = Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
    if (kind != Kind::Popover) {
        flags |= Qt::WindowDoesNotAcceptFocus;
        if (!managesNotifications())
            flags |= Qt::X11BypassWindowManagerHint;
    }
    if (kind == Kind::Hud)
        flags |= Qt::WindowTransparentForInput;
    window.setFlags(flags);
    window.create();
    if (kind == Kind::Popover)
        return;
    // Qt writes _NET_WM_USER_TIME each time it maps a window: 0, "give it no focus", only with this
    window.setProperty("_q_showWithoutActivating", true);
    const auto id = xcb_window_t(window.winId());
    x11::setValues(id, x11::atom("_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL, { allDesktops });
    x11::setValues(
        id, x11::atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM,
        { x11::atom("_NET_WM_WINDOW_TYPE_NOTIFICATION"), x11::atom("_NET_WM_WINDOW_TYPE_UTILITY") });
}

void X11FloatingWindows::shown(QWindow &window, Kind kind)
{
    const auto id = xcb_window_t(window.winId());
    x11::sendToWindowManager(id, x11::atom("_NET_WM_STATE"),
                             { addState, x11::atom("_NET_WM_STATE_SKIP_TASKBAR"),
                               x11::atom("_NET_WM_STATE_SKIP_PAGER"), fromApplication });
    if (kind == Kind::Popover) {
        // it was opened by a click that another program got: the time of our own last event would be too old
        x11::sendToWindowManager(id, x11::atom("_NET_ACTIVE_WINDOW"), { fromPerson, XCB_CURRENT_TIME });
        return;
    }
    x11::sendToWindowManager(id, x11::atom("_NET_WM_DESKTOP"), { allDesktops, fromApplication });
}

void X11FloatingWindows::takeFocus(QWindow &window)
{
    xcb_set_input_focus(x11::connection(), XCB_INPUT_FOCUS_PARENT, xcb_window_t(window.winId()),
                        XCB_CURRENT_TIME);
    xcb_flush(x11::connection());
}

void X11FloatingWindows::setInputRegion(QWindow &window, const QRegion &region)
{
    if (!m_inputRegions.contains(&window))
        connect(&window, &QObject::destroyed, this, [this, &window] { m_inputRegions.remove(&window); });
    m_inputRegions.insert(&window, region);
    window.create();
    const auto id = xcb_window_t(window.winId());
    if (window.flags().testFlag(Qt::WindowTransparentForInput)) {
        // Qt has emptied the input shape
    } else if (region.isEmpty()) {
        xcb_shape_mask(x11::connection(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, id, 0, 0, XCB_PIXMAP_NONE);
    } else {
        std::vector<xcb_rectangle_t> rectangles;
        for (const QRect &rectangle : deviceRectangles(window, region))
            rectangles.push_back({ qint16(rectangle.x()), qint16(rectangle.y()), quint16(rectangle.width()),
                                   quint16(rectangle.height()) });
        xcb_shape_rectangles(x11::connection(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT,
                             XCB_CLIP_ORDERING_UNSORTED, id, 0, 0, quint32(rectangles.size()),
                             rectangles.data());
    }
    cutToShape(window);
}

void X11FloatingWindows::cutToShape(QWindow &window) const
{
    window.setMask(m_compositor.isRunning() ? QRegion() : m_inputRegions.value(&window));
    xcb_flush(x11::connection());
}

void X11FloatingWindows::setBlurRegion(QWindow &window, const QRegion &region)
{
    window.create();
    const auto id = xcb_window_t(window.winId());
    const xcb_atom_t property = x11::atom("_KDE_NET_WM_BLUR_BEHIND_REGION");
    std::vector<quint32> values;
    for (const QRect &rectangle : deviceRectangles(window, region)) {
        for (const int value : { rectangle.x(), rectangle.y(), rectangle.width(), rectangle.height() })
            values.push_back(quint32(value));
    }
    if (values.empty())
        xcb_delete_property(x11::connection(), id, property); // an empty one would mean the whole window
    else
        x11::setValues(id, property, XCB_ATOM_CARDINAL, values);
    xcb_flush(x11::connection());
}

bool X11FloatingWindows::canWatchPresses() const
{
    const auto *extension = xcb_get_extension_data(x11::connection(), &xcb_input_id);
    return extension && extension->present && !x11::isInsideWayland();
}

void X11FloatingWindows::watchPresses(bool watch)
{
    m_watchers += watch ? 1 : -1;
    if (m_watchers == 0) {
        m_presses.reset();
    } else if (!m_presses && canWatchPresses()) {
        m_presses = std::make_unique<X11Presses>();
        connect(m_presses.get(), &X11Presses::pressed, this, [this] { Q_EMIT pressed(QCursor::pos()); });
    }
}

} // namespace kestrel
