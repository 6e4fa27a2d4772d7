#include "platform/linux/X11Compositor.h"
#include "platform/linux/X11.h"
#include <QCoreApplication>
#include <xcb/xfixes.h>

namespace kestrel {

X11Compositor::X11Compositor(QObject *parent)
    : QObject(parent)
{
    xcb_connection_t *connection = x11::connection();
    if (!connection)
        return;
    m_selection = x11::atom("_NET_WM_CM_S" + QByteArray::number(x11::screenNumber()));
    if (const auto *extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
        extension && extension->present) {
        m_notification = quint8(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);
        // a server answers no request of an extension whose version was not agreed on
        xcb_discard_reply(connection, xcb_xfixes_query_version(connection, 5, 0).sequence);
        xcb_xfixes_select_selection_input(connection, x11::root(), m_selection,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER
                                              | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY
                                              | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        QCoreApplication::instance()->installNativeEventFilter(this);
    }
    m_isRunning = hasOwner();
}

X11Compositor::~X11Compositor() = default; // the filter removes itself

bool X11Compositor::nativeEventFilter(const QByteArray & /*type*/, void *message, qintptr * /*result*/)
{
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if ((event->response_type & 0x7f) != m_notification)
        return false;
    const auto *notification = reinterpret_cast<const xcb_xfixes_selection_notify_event_t *>(event);
    const bool isRunning = notification->owner != XCB_WINDOW_NONE;
    if (notification->selection == m_selection && isRunning != m_isRunning) {
        m_isRunning = isRunning;
        Q_EMIT isRunningChanged();
    }
    return false;
}

bool X11Compositor::hasOwner() const
{
    const auto asked = xcb_get_selection_owner(x11::connection(), m_selection);
    const x11::Reply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(x11::connection(), asked, nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

} // namespace kestrel
