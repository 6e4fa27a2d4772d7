#pragma once
#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QString>

namespace kestrel {

/// The colour of what stands on a panel.
[[nodiscard]] QColor panelForeground(bool isDark);

/// The drawing, `height` pixels high and wide, with `label` beside it where there is one.
[[nodiscard]] QImage statusItemImage(const QByteArray &svg, const QString &label, int height,
                                     const QColor &color);

/// The same drawing as nothing but filled paths of one colour. Panels that recolour a symbolic icon set the
/// fill of every shape and know nothing of strokes: a drawing of lines would become blots.
[[nodiscard]] QByteArray symbolicSvg(const QByteArray &svg, const QColor &color);

} // namespace kestrel
