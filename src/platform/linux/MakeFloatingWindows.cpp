#include "platform/linux/MakeFloatingWindows.h"
#include "platform/linux/WaylandFloatingWindows.h"
#include "platform/linux/X11.h"
#include "platform/linux/X11FloatingWindows.h"

namespace kestrel {

std::unique_ptr<FloatingWindows> makeFloatingWindows()
{
    if (x11::connection())
        return std::make_unique<X11FloatingWindows>();
    return std::make_unique<WaylandFloatingWindows>();
}

} // namespace kestrel
