#pragma once
#include <QColor>
#include <QQuickPaintedItem>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

namespace kestrel {

/// A circle and, over it, the part of it that has passed, from the top clockwise. A change glides there in 30
/// seconds, in steps of half a pixel: the eye sees it move, and hardly anything is painted. Main thread only.
class ProgressRing : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double fraction READ fraction WRITE setFraction NOTIFY fractionChanged)
    Q_PROPERTY(bool glides MEMBER m_glides NOTIFY glidesChanged)
    Q_PROPERTY(double stroke MEMBER m_stroke NOTIFY paintChanged)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY paintChanged)
    Q_PROPERTY(QColor trackColor MEMBER m_trackColor NOTIFY paintChanged)
public:
    explicit ProgressRing(QQuickItem *parent = nullptr);

    [[nodiscard]] double fraction() const { return m_fraction; }
    void setFraction(double fraction);
    void paint(QPainter *painter) override;

Q_SIGNALS:
    void fractionChanged();
    void glidesChanged();
    void paintChanged();

private:
    void step();

    double m_fraction = 0;
    double m_shown = 0;
    double m_stepSize = 0;
    double m_stroke = 3;
    bool m_glides = true;
    bool m_hasFraction = false;
    QColor m_color;
    QColor m_trackColor;
    QTimer m_timer;
};

} // namespace kestrel
