#pragma once
#include <QByteArray>
#include <QColor>
#include <QImage>

namespace kestrel {

/// A one-colour drawing in `color`, centred, as large as `size` (in pixels) allows. Empty when `svg` is no
/// drawing.
[[nodiscard]] QImage tintedSvg(const QByteArray &svg, QSize size, const QColor &color);

} // namespace kestrel
