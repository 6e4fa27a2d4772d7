#include "platform/linux/MakeShortcutBackend.h"
#include "platform/linux/PortalShortcuts.h"
#include "platform/linux/X11.h"
#include "platform/linux/X11Shortcuts.h"
#include "platform/null/NullShortcuts.h"
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace kestrel {

std::unique_ptr<ShortcutBackend> makeShortcutBackend(const QDBusConnection &bus)
{
    const bool isX11 = x11::connection() != nullptr;
    if (isX11 && !x11::isInsideWayland())
        return std::make_unique<X11Shortcuts>();
    if (isX11 || QGuiApplication::platformName().startsWith("wayland"_L1))
        return std::make_unique<PortalShortcuts>(bus);
    return std::make_unique<NullShortcuts>();
}

} // namespace kestrel
