#pragma once
#include "app/DesktopServices.h"
#include <memory>

namespace kestrel {

struct InstancePlace;

/// The concrete services of everything on screen; without a display those that answer "not available". Lives
/// as long as the application.
class Desktop
{
public:
    Desktop() = default;
    Desktop(const Desktop &) = delete;
    Desktop &operator=(const Desktop &) = delete;
    virtual ~Desktop() = default;

    /// Needs a QGuiApplication for a display, and outlives neither that nor the ownership of the instance's
    /// name.
    [[nodiscard]] static std::unique_ptr<Desktop> make(bool hasDisplay, const InstancePlace &place);

    [[nodiscard]] virtual DesktopServices services() = 0;
};

} // namespace kestrel
