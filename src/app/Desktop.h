#pragma once
#include "app/DesktopServices.h"
#include <QString>
#include <memory>

namespace kestrel {

/// The concrete services of everything on screen; without a display those that answer "not available". Lives
/// as long as the application.
class Desktop
{
public:
    Desktop() = default;
    Desktop(const Desktop &) = delete;
    Desktop &operator=(const Desktop &) = delete;
    virtual ~Desktop() = default;

    /// Needs a QGuiApplication for a display. Sounds that are not installed are written to the folder
    /// `soundCache`.
    [[nodiscard]] static std::unique_ptr<Desktop> make(bool hasDisplay, const QString &soundCache);

    [[nodiscard]] virtual DesktopServices services() = 0;
};

} // namespace kestrel
