#include "platform/linux/DesktopScreens.h"
#include "platform/linux/X11.h"
#include "platform/linux/X11Struts.h"
#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>

namespace kestrel {

namespace {

/// What lies on `screen` of an area in device pixels. Rounded inwards, so that nothing comes under a panel.
QRect fromDevice(const QScreen &screen, const QRect &area)
{
    const QPoint corner = screen.geometry().topLeft();
    const qreal ratio = screen.devicePixelRatio();
    const QPointF from = QPointF(area.topLeft() - corner) / ratio;
    const QPointF to = QPointF(area.topLeft() + QPoint(area.width(), area.height()) - corner) / ratio;
    return QRect(corner + QPoint(int(std::ceil(from.x())), int(std::ceil(from.y()))),
                 corner + QPoint(int(std::floor(to.x())) - 1, int(std::floor(to.y())) - 1));
}

int distance(const QRect &area, QPoint point)
{
    const int x = std::max({ area.left() - point.x(), point.x() - area.right(), 0 });
    const int y = std::max({ area.top() - point.y(), point.y() - area.bottom(), 0 });
    return x + y;
}

/// GNOME's shell draws its panels itself, without windows that could have struts, and names what they leave
/// of each monitor.
QList<QRect> namedWorkAreas()
{
    const auto desktop = x11::values(x11::root(), x11::atom("_NET_CURRENT_DESKTOP"));
    const QByteArray name = "_GTK_WORKAREAS_D" + QByteArray::number(desktop.empty() ? 0 : desktop.front());
    const auto values = x11::values(x11::root(), x11::atom(name));
    QList<QRect> areas;
    for (size_t at = 0; at + 4 <= values.size(); at += 4)
        areas.append(QRect(int(values[at]), int(values[at + 1]), int(values[at + 2]), int(values[at + 3])));
    return areas;
}

} // namespace

DesktopScreens::DesktopScreens(QObject *parent)
    : Screens(parent)
{
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen *screen) {
        follow(screen);
        readLater();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &DesktopScreens::readLater);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &DesktopScreens::readLater);
    for (QScreen *screen : QGuiApplication::screens())
        follow(screen);
    if (x11::connection()) {
        for (const char *name : { "_NET_CLIENT_LIST", "_NET_WORKAREA", "_NET_CURRENT_DESKTOP" })
            m_tellingProperties.append(x11::atom(name));
        qGuiApp->installNativeEventFilter(this);
    }
    m_frames = readFrames();
}

DesktopScreens::~DesktopScreens() = default; // the filter removes itself

void DesktopScreens::follow(QScreen *screen)
{
    connect(screen, &QScreen::geometryChanged, this, &DesktopScreens::readLater);
    connect(screen, &QScreen::availableGeometryChanged, this, &DesktopScreens::readLater);
}

bool DesktopScreens::nativeEventFilter(const QByteArray & /*type*/, void *message, qintptr * /*result*/)
{
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY) {
        const auto *notification = reinterpret_cast<const xcb_property_notify_event_t *>(event);
        if (notification->window == x11::root() && m_tellingProperties.contains(notification->atom))
            readLater();
    }
    return false;
}

void DesktopScreens::readLater()
{
    if (!std::exchange(m_isReadingLater, true))
        QMetaObject::invokeMethod(this, &DesktopScreens::read, Qt::QueuedConnection);
}

void DesktopScreens::read()
{
    m_isReadingLater = false;
    auto frames = readFrames();
    if (frames == m_frames)
        return;
    m_frames = std::move(frames);
    Q_EMIT changed();
}

QHash<const QScreen *, DesktopScreens::Frames> DesktopScreens::readFrames() const
{
    QHash<const QScreen *, Frames> frames;
    const QList<QScreen *> screens = QGuiApplication::screens();
    const bool onX11 = x11::connection() != nullptr;
    const QSize xScreen = onX11 ? x11::rootSize() : QSize();
    const QList<X11Strut> struts = onX11 ? readStruts(xScreen) : QList<X11Strut>();
    const QList<QRect> workAreas = onX11 ? namedWorkAreas() : QList<QRect>();
    for (const QScreen *screen : screens) {
        const QRect monitor = x11::deviceGeometry(*screen);
        QRect visible = screen->availableGeometry();
        if (!struts.isEmpty())
            visible = fromDevice(*screen, withoutStruts(monitor, xScreen, struts));
        for (const QRect &area : workAreas) {
            if (monitor.contains(area))
                visible &= fromDevice(*screen, area);
        }
        frames.insert(screen, { screen->geometry(), visible });
    }
    return frames;
}

QScreen *DesktopScreens::mainScreen() const
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    if (screens.size() < 2)
        return QGuiApplication::primaryScreen();
    // first our own: window managers do not count a card that was clicked as active
    if (const QWindow *window = QGuiApplication::focusWindow())
        return window->screen();
    if (!x11::connection())
        return QGuiApplication::primaryScreen();
    const auto active = x11::values(x11::root(), x11::atom("_NET_ACTIVE_WINDOW"));
    if (active.empty() || active.front() == XCB_WINDOW_NONE)
        return QGuiApplication::primaryScreen();
    const auto askedSize = xcb_get_geometry(x11::connection(), active.front());
    const auto askedPlace = xcb_translate_coordinates(x11::connection(), active.front(), x11::root(), 0, 0);
    const x11::Reply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(x11::connection(), askedSize, nullptr));
    const x11::Reply<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(x11::connection(), askedPlace, nullptr));
    if (size && place) {
        const QPoint centre(place->dst_x + size->width / 2, place->dst_y + size->height / 2);
        for (QScreen *screen : screens) {
            if (x11::deviceGeometry(*screen).contains(centre))
                return screen;
        }
    }
    return QGuiApplication::primaryScreen();
}

QRect DesktopScreens::visibleFrame(const QScreen &screen) const
{
    // a screen that came in this very turn has not been read yet
    const auto found = m_frames.constFind(&screen);
    return found != m_frames.cend() ? found->visibleFrame : screen.availableGeometry();
}

std::optional<QRect> DesktopScreens::mainFrame() const
{
    if (const QScreen *screen = mainScreen())
        return screen->geometry();
    return {};
}

std::optional<QRect> DesktopScreens::mainVisibleFrame() const
{
    if (const QScreen *screen = mainScreen())
        return visibleFrame(*screen);
    return {};
}

std::optional<QRect> DesktopScreens::visibleFrameAt(QPoint point) const
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    const auto nearest = std::ranges::min_element(
        screens, {}, [point](const QScreen *screen) { return distance(screen->geometry(), point); });
    if (nearest == screens.end())
        return {};
    return visibleFrame(**nearest);
}

QPoint DesktopScreens::pointer() const
{
    return QCursor::pos();
}

} // namespace kestrel
