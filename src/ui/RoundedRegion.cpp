#include "ui/RoundedRegion.h"
#include <algorithm>
#include <cmath>

namespace kestrel {

QRegion roundedRegion(const QRect &rect, int radius)
{
    const int corner = std::clamp(radius, 0, std::min(rect.width(), rect.height()) / 2);
    QRegion region(rect.adjusted(0, corner, 0, -corner));
    for (int row = 0; row < corner; ++row) {
        const double height = corner - row - 0.5;
        const int inset =
            static_cast<int>(std::lround(corner - std::sqrt(corner * corner - height * height)));
        const int width = rect.width() - 2 * inset;
        region += QRect(rect.left() + inset, rect.top() + row, width, 1);
        region += QRect(rect.left() + inset, rect.bottom() - row, width, 1);
    }
    return region;
}

} // namespace kestrel
