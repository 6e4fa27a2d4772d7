#pragma once
#include <QByteArray>
#include <optional>

namespace kestrel {

/// Which of Qt's platforms windows are to be drawn with: "xcb" wherever an X server answers, which on Wayland
/// is XWayland, because Wayland lets nobody place a window; else "wayland"; what QT_QPA_PLATFORM says above
/// all. Nothing where there is no display. To be asked before the application object is made, since Qt ends
/// the process where it finds none.
[[nodiscard]] std::optional<QByteArray> windowSystem();

} // namespace kestrel
