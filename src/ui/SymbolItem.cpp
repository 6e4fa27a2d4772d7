#include "ui/SymbolItem.h"
#include "platform/TintedSvg.h"
#include "ui/Symbols.h"
#include <QCache>
#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QSvgRenderer>
#include <memory>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

struct Drawing
{
    QString name;
    int side;
    QRgb color;

    friend bool operator==(const Drawing &, const Drawing &) = default;
};

size_t qHash(const Drawing &drawing, size_t seed = 0)
{
    return qHashMulti(seed, drawing.name, drawing.side, drawing.color);
}

QImage draw(const Drawing &drawing)
{
    const QSize size(drawing.side, drawing.side);
    if (drawing.name != "kestrel"_L1)
        return tintedSvg(symbolSvg(drawing.name), size, QColor::fromRgba(drawing.color));
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(applicationIconSvg());
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

/// Rows of a list show the same few symbols again and again.
QImage drawn(const Drawing &drawing)
{
    static QCache<Drawing, QImage> cache(512LL * 1024);
    if (const QImage *known = cache.object(drawing))
        return *known;
    const QImage image = draw(drawing);
    cache.insert(drawing, new QImage(image), image.sizeInBytes());
    return image;
}

} // namespace

SymbolItem::SymbolItem(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void SymbolItem::setName(const QString &name)
{
    if (m_name == name)
        return;
    m_name = name;
    update();
    Q_EMIT nameChanged();
}

void SymbolItem::setSize(qreal size)
{
    if (qFuzzyCompare(implicitWidth(), size))
        return;
    setImplicitSize(size, size);
    Q_EMIT sizeChanged();
}

void SymbolItem::setColor(const QColor &color)
{
    if (m_color == color)
        return;
    m_color = color;
    update();
    Q_EMIT colorChanged();
}

void SymbolItem::itemChange(ItemChange change, const ItemChangeData &value)
{
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange)
        update();
    QQuickItem::itemChange(change, value);
}

QSGNode *SymbolItem::updatePaintNode(QSGNode *node, UpdatePaintNodeData * /*data*/)
{
    std::unique_ptr<QSGImageNode> image(static_cast<QSGImageNode *>(node));
    const qreal ratio = window()->effectiveDevicePixelRatio();
    const int side = qRound(qMin(width(), height()) * ratio);
    const QImage pixels = side > 0 ? drawn({ m_name, side, m_color.rgba() }) : QImage();
    if (pixels.isNull())
        return nullptr;
    if (!image) {
        image.reset(window()->createImageNode());
        image->setOwnsTexture(true);
    }
    image->setTexture(window()->createTextureFromImage(pixels));
    // as many device pixels as the drawing has, so that none is blended with its neighbour
    const qreal shown = side / ratio;
    image->setRect(QRectF(qRound((width() - shown) / 2), qRound((height() - shown) / 2), shown, shown));
    return image.release();
}

} // namespace kestrel
