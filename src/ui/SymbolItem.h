#pragma once
#include <QColor>
#include <QQuickItem>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace kestrel {

/// One of our symbols in one colour, drawn anew for every size and device pixel ratio so that it is always
/// sharp. The name "kestrel" gives the application's icon in its
/// own colours.
/// Symbol.qml is what windows use.
class SymbolItem : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(qreal size READ size WRITE setSize NOTIFY sizeChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
public:
    explicit SymbolItem(QQuickItem *parent = nullptr);

    [[nodiscard]] QString name() const { return m_name; }
    void setName(const QString &name);
    [[nodiscard]] qreal size() const { return implicitWidth(); }
    void setSize(qreal size);
    [[nodiscard]] QColor color() const { return m_color; }
    void setColor(const QColor &color);

Q_SIGNALS:
    void nameChanged();
    void sizeChanged();
    void colorChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;

private:
    QString m_name;
    QColor m_color = Qt::black;
};

} // namespace kestrel
