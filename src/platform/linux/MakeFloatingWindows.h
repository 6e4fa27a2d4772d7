#pragma once
#include "platform/FloatingWindows.h"
#include <memory>

namespace kestrel {

/// Those of the window system that Qt runs on. To be called once there is a QGuiApplication.
[[nodiscard]] std::unique_ptr<FloatingWindows> makeFloatingWindows();

} // namespace kestrel
