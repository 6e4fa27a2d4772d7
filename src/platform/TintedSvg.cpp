#include "platform/TintedSvg.h"
#include <QPainter>
#include <QSvgRenderer>

namespace kestrel {

QImage tintedSvg(const QByteArray &svg, QSize size, const QColor &color)
{
    QSvgRenderer renderer(svg);
    if (!renderer.isValid() || size.isEmpty())
        return {};
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

} // namespace kestrel
