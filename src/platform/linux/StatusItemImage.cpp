#include "platform/linux/StatusItemImage.h"
#include "platform/TintedSvg.h"
#include <QFont>
#include <QFontMetrics>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>
#include <cmath>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// Gathers the outline of all that is painted, in the painter's own coordinates.
class OutlineEngine final : public QPaintEngine
{
public:
    OutlineEngine()
        : QPaintEngine(AllFeatures)
    {
    }

    bool begin(QPaintDevice * /*device*/) override { return true; }
    bool end() override { return true; }
    [[nodiscard]] Type type() const override { return User; }
    void drawPixmap(const QRectF & /*to*/, const QPixmap & /*pixmap*/, const QRectF & /*from*/) override { }

    void updateState(const QPaintEngineState &state) override
    {
        m_pen = state.painter()->pen();
        m_brush = state.painter()->brush();
        m_transform = state.transform();
    }

    void drawPath(const QPainterPath &path) override
    {
        if (m_brush.style() != Qt::NoBrush)
            outline.addPath(m_transform.map(path));
        if (m_pen.style() != Qt::NoPen) {
            QPainterPathStroker stroker(m_pen);
            stroker.setCurveThreshold(0.05);
            // winding: where a line crosses itself it is no hole
            QPainterPath stroke = stroker.createStroke(path);
            stroke.setFillRule(Qt::WindingFill);
            outline.addPath(m_transform.map(stroke.simplified()));
        }
    }

    void drawPolygon(const QPointF *points, int count, PolygonDrawMode mode) override
    {
        QPainterPath path;
        path.addPolygon(QPolygonF(QList<QPointF>(points, points + count)));
        if (mode != PolylineMode)
            path.closeSubpath();
        drawPath(path);
    }

    QPainterPath outline;

private:
    QPen m_pen;
    QBrush m_brush;
    QTransform m_transform;
};

class OutlineDevice final : public QPaintDevice
{
public:
    [[nodiscard]] QPaintEngine *paintEngine() const override { return &m_engine; }
    [[nodiscard]] const QPainterPath &outline() const { return m_engine.outline; }

    static constexpr int side = 24;

protected:
    [[nodiscard]] int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
        case PdmHeight:
            return side;
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY:
            return 96;
        case PdmWidthMM:
        case PdmHeightMM:
            return side * 254 / 960;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        case PdmNumColors:
        case PdmDepth:
            break;
        }
        return 0;
    }

private:
    mutable OutlineEngine m_engine;
};

QByteArray pathText(const QPainterPath &path)
{
    QByteArray text;
    const auto add = [&text](char letter, const QPainterPath::Element &point) {
        text += letter;
        text += QByteArray::number(std::round(point.x * 100) / 100) + ' '
            + QByteArray::number(std::round(point.y * 100) / 100);
    };
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        constexpr char letters[] { 'M', 'L', 'C', ' ' };
        add(letters[element.type], element);
    }
    return text;
}

} // namespace

QColor panelForeground(bool isDark)
{
    return isDark ? QColor(0xF2, 0xF2, 0xF5) : QColor(0x1C, 0x1C, 0x20);
}

QImage statusItemImage(const QByteArray &svg, const QString &label, int height, const QColor &color)
{
    QImage icon = tintedSvg(svg, { height, height }, color);
    if (label.isEmpty() || height <= 0)
        return icon;
    QFont font;
    font.setPixelSize(std::max(8, height * 5 / 8));
    font.setWeight(QFont::Medium);
    const int textWidth = QFontMetrics(font).horizontalAdvance(label);
    const int gap = std::max(2, height / 6);
    QImage image(height + gap + textWidth + gap, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.drawImage(0, 0, icon);
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(QRect(height + gap, 0, textWidth + gap, height), Qt::AlignVCenter | Qt::AlignLeft,
                     label);
    return image;
}

QByteArray symbolicSvg(const QByteArray &svg, const QColor &color)
{
    QSvgRenderer renderer(svg);
    if (!renderer.isValid())
        return {};
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    OutlineDevice device;
    QPainter painter(&device);
    renderer.render(&painter, QRectF(0, 0, OutlineDevice::side, OutlineDevice::side));
    painter.end();
    // one path for all: `simplified` above made each part free of crossings, and the union of them is what
    // the even-odd and the non-zero rule agree about
    const QPainterPath outline = device.outline().simplified();
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"24\" height=\"24\" viewBox=\"0 0 24 24\">"
           "<path fill=\""
        + color.name().toLatin1() + "\" fill-rule=\"evenodd\" d=\"" + pathText(outline) + "\"/></svg>\n";
}

} // namespace kestrel
