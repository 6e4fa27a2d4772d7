#include "platform/linux/X11.h"
#include <QGuiApplication>
#include <QHash>
#include <algorithm>

namespace kestrel::x11 {

xcb_connection_t *connection()
{
    const auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    const auto *x11 =
        application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

bool isInsideWayland()
{
    return qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

int screenNumber()
{
    char *host = nullptr;
    int display = 0;
    int screen = 0;
    xcb_parse_display(nullptr, &host, &display, &screen);
    std::free(host);
    return screen;
}

xcb_window_t root()
{
    static const xcb_window_t window = [] {
        auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection()));
        for (int number = screenNumber(); number > 0 && screen.rem > 1; --number)
            xcb_screen_next(&screen);
        return screen.data->root;
    }();
    return window;
}

QSize rootSize()
{
    const auto asked = xcb_get_geometry(connection(), root());
    const Reply<xcb_get_geometry_reply_t> reply(xcb_get_geometry_reply(connection(), asked, nullptr));
    return reply ? QSize(reply->width, reply->height) : QSize();
}

xcb_atom_t atom(QByteArrayView name)
{
    static QHash<QByteArray, xcb_atom_t> known;
    const QByteArray key = name.toByteArray();
    if (const auto found = known.constFind(key); found != known.cend())
        return *found;
    const auto asked = xcb_intern_atom(connection(), false, quint16(name.size()), name.data());
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection(), asked, nullptr));
    return *known.insert(key, reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE));
}

xcb_get_property_cookie_t askValues(xcb_window_t window, xcb_atom_t property)
{
    constexpr quint32 mostValues = 65536;
    return xcb_get_property(connection(), false, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, mostValues);
}

std::vector<quint32> values(xcb_get_property_cookie_t asked)
{
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection(), asked, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto *first = static_cast<const quint32 *>(xcb_get_property_value(reply.get()));
    return { first, first + xcb_get_property_value_length(reply.get()) / int(sizeof *first) };
}

void setValues(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, const std::vector<quint32> &values)
{
    xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, window, property, type, 32,
                        quint32(values.size()), values.data());
}

QByteArray windowManagerName()
{
    const auto window = values(root(), atom("_NET_SUPPORTING_WM_CHECK"));
    if (window.empty())
        return {};
    constexpr quint32 mostWords = 64;
    const auto asked = xcb_get_property(connection(), false, window.front(), atom("_NET_WM_NAME"),
                                        XCB_GET_PROPERTY_TYPE_ANY, 0, mostWords);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection(), asked, nullptr));
    if (!reply || reply->format != 8)
        return {};
    return { static_cast<const char *>(xcb_get_property_value(reply.get())),
             xcb_get_property_value_length(reply.get()) };
}

void sendToWindowManager(xcb_window_t window, xcb_atom_t message, const std::vector<quint32> &values)
{
    xcb_client_message_event_t event {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = message;
    std::copy_n(values.begin(), std::min<size_t>(values.size(), 5), event.data.data32);
    xcb_send_event(connection(), false, root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&event));
    xcb_flush(connection());
}

QRect deviceGeometry(const QScreen &screen)
{
    const QRect geometry = screen.geometry();
    return { geometry.topLeft(), (QSizeF(geometry.size()) * screen.devicePixelRatio()).toSize() };
}

} // namespace kestrel::x11
