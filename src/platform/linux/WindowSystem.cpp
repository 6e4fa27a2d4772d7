#include "platform/linux/WindowSystem.h"
#include <QtGlobal>
#include <xcb/xcb.h>

namespace kestrel {

std::optional<QByteArray> windowSystem()
{
    if (QByteArray chosen = qgetenv("QT_QPA_PLATFORM"); !chosen.isEmpty())
        return chosen;
    if (!qEnvironmentVariableIsEmpty("DISPLAY")) {
        xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
        const bool answers = xcb_connection_has_error(connection) == 0;
        xcb_disconnect(connection);
        if (answers)
            return "xcb";
    }
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return "wayland";
    return {};
}

} // namespace kestrel
