#pragma once
#include "platform/ShortcutBackend.h"
#include <QDBusConnection>
#include <memory>

namespace kestrel {

/// The one of the display that Qt runs on: grabs on X11; the portal on Wayland, and where Qt runs on
/// XWayland, which gives its programs the keys only while one of them has the focus. Without a display, all
/// are refused. To be called once there is a QGuiApplication, which outlives it.
[[nodiscard]] std::unique_ptr<ShortcutBackend> makeShortcutBackend(const QDBusConnection &bus);

} // namespace kestrel
