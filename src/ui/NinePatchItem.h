#pragma once
#include <QColor>
#include <QImage>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace kestrel {

/// Something with corners that cost work to draw and with edges and a middle that repeat: only a small
/// picture of it is painted, and stretched to any size.
class NinePatchItem : public QQuickItem
{
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(qreal radius READ radius WRITE setRadius NOTIFY radiusChanged)
public:
    [[nodiscard]] qreal radius() const { return m_radius; }
    void setRadius(qreal radius);

Q_SIGNALS:
    void radiusChanged();

protected:
    explicit NinePatchItem(QQuickItem *parent);

    struct Patch
    {
        QImage image; ///< the corners and at most one pixel between them
        int corner; ///< how far they reach, in pixels of the image
    };
    /// How far the picture reaches out over the item, in device-independent pixels.
    [[nodiscard]] virtual QMarginsF reach() const { return {}; }
    /// `whole` is what the patch will be stretched to, in device pixels.
    [[nodiscard]] virtual Patch paintPatch(QSize whole, qreal ratio) const = 0;

    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;
    void geometryChange(const QRectF &now, const QRectF &before) override;

private:
    qreal m_radius = 0;
};

/// A filled rectangle with a one-pixel edge, its corners as continuous as its sides leave room for. (The base
/// is named in full, since QML's tooling looks it up by that name.)
class SmoothRectangle : public kestrel::NinePatchItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(QColor edge READ edge WRITE setEdge NOTIFY edgeChanged)
public:
    explicit SmoothRectangle(QQuickItem *parent = nullptr);

    [[nodiscard]] QColor color() const { return m_color; }
    void setColor(const QColor &color);
    /// Drawn over the filling; transparent: none.
    [[nodiscard]] QColor edge() const { return m_edge; }
    void setEdge(const QColor &edge);

Q_SIGNALS:
    void colorChanged();
    void edgeChanged();

protected:
    [[nodiscard]] Patch paintPatch(QSize whole, qreal ratio) const override;

private:
    QColor m_color = Qt::transparent;
    QColor m_edge = Qt::transparent;
};

/// The soft shadow of a rounded rectangle of the item's size: black at 18 %, blurred by 24, 10 further down.
/// Reaches out over the item by Metrics.shadowReach, and by shadowDrop more or less below and above.
class SoftShadow : public kestrel::NinePatchItem
{
    Q_OBJECT
    QML_ELEMENT
public:
    explicit SoftShadow(QQuickItem *parent = nullptr);

protected:
    [[nodiscard]] QMarginsF reach() const override;
    [[nodiscard]] Patch paintPatch(QSize whole, qreal ratio) const override;
};

} // namespace kestrel
