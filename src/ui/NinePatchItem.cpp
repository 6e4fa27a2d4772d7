#include "ui/NinePatchItem.h"
#include <QCache>
#include <QPainter>
#include <QPainterPath>
#include <QQuickWindow>
#include <QSGImageNode>
#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numbers>

namespace kestrel {

namespace {

/// How much further than its radius a continuous corner reaches along the sides.
constexpr double continuousReach = 1.528;

constexpr double shadowOpacity = 0.18;
constexpr double shadowBlur = 24;
constexpr double shadowDrop = 10;
constexpr double shadowReach = 30;

struct PatchNode final : QSGNode
{
    std::array<QSGImageNode *, 9> parts {};
    std::unique_ptr<QSGTexture> texture;
};

/// Room for two corners and a pixel between them each way, and no larger than what it is for.
QSize patchSize(int corner, QSize whole)
{
    return whole.boundedTo(QSize(corner * 2 + 1, corner * 2 + 1));
}

/// All that a patch depends on, in device pixels.
struct Painted
{
    QSize size;
    double radius;
    double ratio;
    QRgb color;
    QRgb edge;

    friend bool operator==(const Painted &, const Painted &) = default;
};

size_t qHash(const Painted &painted, size_t seed = 0)
{
    return qHashMulti(seed, painted.size, painted.radius, painted.ratio, painted.color, painted.edge);
}

/// Rows of a list, and cards, look the same but for their size: they share one picture. Each kind of `paint`
/// has pictures of its own.
template<typename Paint>
QImage sharedPatch(const Painted &painted, Paint paint)
{
    static QCache<Painted, QImage> cache(256LL * 1024);
    if (const QImage *known = cache.object(painted))
        return *known;
    QImage image(painted.size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    paint(image);
    cache.insert(painted, new QImage(image), image.sizeInBytes());
    return image;
}

/// Where the middle begins and ends along a side of `length`.
std::array<double, 4> thirds(double from, double length, double corner)
{
    return { from, from + corner, from + length - corner, from + length };
}

/// One corner as a superellipse that goes through the middle of the circle's arc, whatever its reach.
void addCorner(QPolygonF &outline, QPointF centre, double reach, double radius, double from)
{
    constexpr int steps = 24;
    const double exponent = -std::numbers::ln2 / std::log(1 - (1 - std::numbers::sqrt2 / 2) * radius / reach);
    for (int step = 0; step <= steps; ++step) {
        const double angle = from + std::numbers::pi / 2 * step / steps;
        const auto along = [&](double part) {
            return std::copysign(reach * std::pow(std::abs(part), 2 / exponent), part);
        };
        outline << centre + QPointF(along(std::cos(angle)), along(std::sin(angle)));
    }
}

QPainterPath smoothOutline(const QRectF &bounds, double reach, double radius)
{
    QPainterPath path;
    if (radius <= 0 || reach <= 0) {
        path.addRect(bounds);
        return path;
    }
    const QRectF centres = bounds.adjusted(reach, reach, -reach, -reach);
    QPolygonF outline;
    addCorner(outline, centres.bottomRight(), reach, radius, 0);
    addCorner(outline, centres.bottomLeft(), reach, radius, std::numbers::pi / 2);
    addCorner(outline, centres.topLeft(), reach, radius, std::numbers::pi);
    addCorner(outline, centres.topRight(), reach, radius, std::numbers::pi * 3 / 2);
    path.addPolygon(outline);
    path.closeSubpath();
    return path;
}

} // namespace

NinePatchItem::NinePatchItem(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void NinePatchItem::setRadius(qreal radius)
{
    if (qFuzzyCompare(m_radius, radius))
        return;
    m_radius = radius;
    update();
    Q_EMIT radiusChanged();
}

void NinePatchItem::itemChange(ItemChange change, const ItemChangeData &value)
{
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange)
        update();
    QQuickItem::itemChange(change, value);
}

void NinePatchItem::geometryChange(const QRectF &now, const QRectF &before)
{
    QQuickItem::geometryChange(now, before);
    update();
}

QSGNode *NinePatchItem::updatePaintNode(QSGNode *node, UpdatePaintNodeData * /*data*/)
{
    std::unique_ptr<PatchNode> patched(static_cast<PatchNode *>(node));
    const qreal ratio = window()->effectiveDevicePixelRatio();
    const QRectF bounds = boundingRect().marginsAdded(reach());
    const QSize whole = (bounds.size() * ratio).toSize();
    if (width() <= 0 || height() <= 0 || whole.isEmpty())
        return nullptr;
    const Patch patch = paintPatch(whole, ratio);
    if (!patched) {
        patched = std::make_unique<PatchNode>();
        for (QSGImageNode *&part : patched->parts) {
            part = window()->createImageNode();
            part->setFiltering(QSGTexture::Nearest); // its pixels are the screen's
            patched->appendChildNode(part);
        }
    }
    std::unique_ptr<QSGTexture> texture(window()->createTextureFromImage(patch.image));
    const QSize size = patch.image.size();
    const int wide = std::min(patch.corner, size.width() / 2);
    const int high = std::min(patch.corner, size.height() / 2);
    const auto sourceAcross = thirds(0, size.width(), wide);
    const auto sourceDown = thirds(0, size.height(), high);
    const auto across = thirds(bounds.left(), whole.width() / ratio, wide / ratio);
    const auto down = thirds(bounds.top(), whole.height() / ratio, high / ratio);
    for (size_t row = 0; row < 3; ++row) {
        for (size_t column = 0; column < 3; ++column) {
            QSGImageNode *part = patched->parts[row * 3 + column];
            part->setTexture(texture.get());
            part->setSourceRect(QRectF(QPointF(sourceAcross[column], sourceDown[row]),
                                       QPointF(sourceAcross[column + 1], sourceDown[row + 1])));
            part->setRect(
                QRectF(QPointF(across[column], down[row]), QPointF(across[column + 1], down[row + 1])));
        }
    }
    patched->texture = std::move(texture);
    return patched.release();
}

SmoothRectangle::SmoothRectangle(QQuickItem *parent)
    : NinePatchItem(parent)
{
}

void SmoothRectangle::setColor(const QColor &color)
{
    if (m_color == color)
        return;
    m_color = color;
    update();
    Q_EMIT colorChanged();
}

void SmoothRectangle::setEdge(const QColor &edge)
{
    if (m_edge == edge)
        return;
    m_edge = edge;
    update();
    Q_EMIT edgeChanged();
}

NinePatchItem::Patch SmoothRectangle::paintPatch(QSize whole, qreal ratio) const
{
    const double room = std::min(whole.width(), whole.height()) / 2.0;
    const double round = std::min(radius() * ratio, room);
    const double reach = std::min(round * continuousReach, room);
    const int corner = std::max(2, static_cast<int>(std::ceil(reach)));
    const auto paint = [&](QImage &image) {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF all = image.rect();
        const QPainterPath outline = smoothOutline(all, reach, round);
        painter.fillPath(outline, m_color);
        if (m_edge.alpha() > 0) {
            const double line = std::max(1.0, std::round(ratio));
            const QPainterPath inside =
                smoothOutline(all.adjusted(line, line, -line, -line), std::max(0.0, reach - line),
                              std::max(0.0, round - line));
            QPainterPath ring = outline; // the path's rule leaves out what is covered twice
            ring.addPath(inside);
            painter.fillPath(ring, m_edge);
        }
    };
    const Painted painted { patchSize(corner, whole), round, ratio, m_color.rgba(), m_edge.rgba() };
    return { sharedPatch(painted, paint), corner };
}

SoftShadow::SoftShadow(QQuickItem *parent)
    : NinePatchItem(parent)
{
}

QMarginsF SoftShadow::reach() const
{
    return { shadowReach, shadowReach - shadowDrop, shadowReach, shadowReach + shadowDrop };
}

NinePatchItem::Patch SoftShadow::paintPatch(QSize whole, qreal ratio) const
{
    const double deviation = shadowBlur / 2 * ratio;
    const double out = shadowReach * ratio;
    const double round = radius() * ratio;
    const int corner = static_cast<int>(std::ceil(out + std::max(out, round)));
    const auto paint = [&](QImage &image) {
        const double centreX = image.width() / 2.0;
        const double centreY = image.height() / 2.0;
        // all four quarters are the same
        for (int y = 0; y < (image.height() + 1) / 2; ++y) {
            auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
            for (int x = 0; x < (image.width() + 1) / 2; ++x) {
                // the distance from the rounded rectangle; across it a blurred edge is the error function
                const double dx = std::abs(x + 0.5 - centreX) - (centreX - out) + round;
                const double dy = std::abs(y + 0.5 - centreY) - (centreY - out) + round;
                const double distance = std::hypot(std::max(dx, 0.0), std::max(dy, 0.0))
                    + std::min(std::max(dx, dy), 0.0) - round;
                const double share = std::erfc(distance / (deviation * std::numbers::sqrt2)) / 2;
                const QRgb shade = qRgba(0, 0, 0, static_cast<int>(std::lround(255 * shadowOpacity * share)));
                line[x] = shade;
                line[image.width() - 1 - x] = shade;
            }
            std::copy_n(line, image.width(),
                        reinterpret_cast<QRgb *>(image.scanLine(image.height() - 1 - y)));
        }
    };
    return { sharedPatch({ patchSize(corner, whole), round, ratio, 0, 0 }, paint), corner };
}

} // namespace kestrel
