#pragma once
#include <QByteArray>
#include <QByteArrayView>
#include <QPoint>
#include <QRect>
#include <QScreen>
#include <cstdlib>
#include <memory>
#include <vector>
#include <xcb/xcb.h>

/// The few things that everything here asks of an X server. All of it speaks through Qt's own connection, and
/// in device pixels; nothing may be called where connection() is null. Main thread only.
namespace kestrel::x11 {

struct Free
{
    void operator()(void *reply) const { std::free(reply); }
};
/// A reply or an event of libxcb.
template<typename T>
using Reply = std::unique_ptr<T, Free>;

/// Null where Qt does not run on X11.
[[nodiscard]] xcb_connection_t *connection();
/// An X server inside a Wayland session (XWayland): it sees and knows only X windows.
[[nodiscard]] bool isInsideWayland();
/// Of the display's default screen.
[[nodiscard]] int screenNumber();
[[nodiscard]] xcb_window_t root();
/// As it is now: monitors come and go.
[[nodiscard]] QSize rootSize();
[[nodiscard]] xcb_atom_t atom(QByteArrayView name);

/// Asks for a property of 32-bit values; the answer is read with the second one, so that many can be on their
/// way at once.
[[nodiscard]] xcb_get_property_cookie_t askValues(xcb_window_t window, xcb_atom_t property);
[[nodiscard]] std::vector<quint32> values(xcb_get_property_cookie_t asked);
[[nodiscard]] inline std::vector<quint32> values(xcb_window_t window, xcb_atom_t property)
{
    return values(askValues(window, property));
}
void setValues(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, const std::vector<quint32> &values);
/// As _NET_WM_NAME says; empty where none runs.
[[nodiscard]] QByteArray windowManagerName();
/// A request to the window manager about `window`.
void sendToWindowManager(xcb_window_t window, xcb_atom_t message, const std::vector<quint32> &values);

/// Screens keep the place of their corner when Qt scales them; only distances from it shrink.
[[nodiscard]] QRect deviceGeometry(const QScreen &screen);

} // namespace kestrel::x11
