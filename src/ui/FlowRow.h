#pragma once
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace kestrel {

/// Lays its children out one after the other, each at its implicit size, and begins a new line below where
/// one would pass the right edge. Its implicit height is what that needs in its width.
class FlowRow : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(qreal spacing READ spacing WRITE setSpacing NOTIFY spacingChanged)
public:
    using QQuickItem::QQuickItem;

    [[nodiscard]] qreal spacing() const { return m_spacing; }
    void setSpacing(qreal spacing);

Q_SIGNALS:
    void spacingChanged();

protected:
    void componentComplete() override;
    void geometryChange(const QRectF &now, const QRectF &before) override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;
    void updatePolish() override;

private:
    void place();

    qreal m_spacing = 0;
};

} // namespace kestrel
