#include "ui/FlowRow.h"
#include <algorithm>

namespace kestrel {

namespace {

QSizeF idealSize(const QQuickItem &item)
{
    return { item.implicitWidth() > 0 ? item.implicitWidth() : item.width(),
             item.implicitHeight() > 0 ? item.implicitHeight() : item.height() };
}

} // namespace

void FlowRow::setSpacing(qreal spacing)
{
    if (qFuzzyCompare(m_spacing, spacing))
        return;
    m_spacing = spacing;
    polish();
    Q_EMIT spacingChanged();
}

void FlowRow::componentComplete()
{
    QQuickItem::componentComplete();
    // before the first frame already: what is around it asks for the height
    place();
}

void FlowRow::geometryChange(const QRectF &now, const QRectF &before)
{
    QQuickItem::geometryChange(now, before);
    if (isComponentComplete() && now.width() != before.width())
        place();
}

void FlowRow::itemChange(ItemChange change, const ItemChangeData &value)
{
    if (change == ItemChildAddedChange) {
        for (const auto changed : { &QQuickItem::implicitWidthChanged, &QQuickItem::implicitHeightChanged,
                                    &QQuickItem::visibleChanged })
            connect(value.item, changed, this, &QQuickItem::polish);
        polish();
    } else if (change == ItemChildRemovedChange) {
        disconnect(value.item, nullptr, this, nullptr);
        polish();
    }
    QQuickItem::itemChange(change, value);
}

void FlowRow::updatePolish()
{
    place();
}

void FlowRow::place()
{
    double x = 0;
    double y = 0;
    double lineHeight = 0;
    double reached = 0;
    const bool isBounded = widthValid();
    const auto children = childItems();
    for (QQuickItem *child : children) {
        const QSizeF size = idealSize(*child);
        // a Repeater is a child too, and has no size
        if (!child->isVisible() || size.isEmpty())
            continue;
        if (isBounded && x + size.width() > width()) {
            x = 0;
            y += lineHeight + m_spacing;
            lineHeight = 0;
        }
        child->setPosition({ x, y });
        child->setSize(size);
        reached = std::max(reached, x + size.width());
        x += size.width() + m_spacing;
        lineHeight = std::max(lineHeight, size.height());
    }
    setImplicitSize(reached, y + lineHeight);
}

} // namespace kestrel
