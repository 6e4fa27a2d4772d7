#include "platform/linux/X11Presses.h"
#include "base/Log.h"
#include <xcb/xinput.h>

namespace kestrel {

namespace {

/// Servers know the wheel as buttons four to seven.
bool isWheel(quint32 button)
{
    return button >= 4 && button <= 7;
}

} // namespace

X11Presses::X11Presses(QObject *parent)
    : QObject(parent)
    , m_connection(xcb_connect(nullptr, nullptr))
{
    const auto *extension = xcb_connection_has_error(m_connection)
        ? nullptr
        : xcb_get_extension_data(m_connection, &xcb_input_id);
    if (!extension || !extension->present) {
        qCWarning(lcApp) << "Presses outside our windows cannot be heard";
        return;
    }
    m_extension = extension->major_opcode;
    // from 2.1 on raw events are told during another client's grab too, and 2.2 knows fingers
    const x11::Reply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        m_connection, xcb_input_xi_query_version(m_connection, 2, 2), nullptr));
    struct
    {
        xcb_input_event_mask_t head;
        quint32 mask;
    } const wanted { { XCB_INPUT_DEVICE_ALL_MASTER, 1 },
                     XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN };
    xcb_input_xi_select_events(m_connection, x11::root(), 1, &wanted.head);
    xcb_flush(m_connection);
    m_notifier =
        std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(m_connection), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &X11Presses::read);
}

X11Presses::~X11Presses()
{
    m_notifier.reset();
    xcb_disconnect(m_connection);
}

void X11Presses::read()
{
    bool isPressed = false;
    while (const x11::Reply<xcb_generic_event_t> event { xcb_poll_for_event(m_connection) }) {
        const auto *generic = reinterpret_cast<const xcb_ge_generic_event_t *>(event.get());
        if ((event->response_type & 0x7f) != XCB_GE_GENERIC || generic->extension != m_extension)
            continue;
        const auto *press = reinterpret_cast<const xcb_input_raw_button_press_event_t *>(generic);
        isPressed |= generic->event_type == XCB_INPUT_RAW_TOUCH_BEGIN
            || (generic->event_type == XCB_INPUT_RAW_BUTTON_PRESS && !isWheel(press->detail));
    }
    if (xcb_connection_has_error(m_connection))
        m_notifier->setEnabled(false); // the server is gone; its socket would be readable for ever
    if (isPressed)
        Q_EMIT pressed();
}

} // namespace kestrel
