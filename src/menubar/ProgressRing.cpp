#include "menubar/ProgressRing.h"
#include <QPainter>
#include <QPen>
#include <QQuickWindow>
#include <cmath>
#include <numbers>
#include <utility>

namespace kestrel {

ProgressRing::ProgressRing(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    connect(this, &ProgressRing::paintChanged, this, [this] { update(); });
    connect(&m_timer, &QTimer::timeout, this, &ProgressRing::step);
}

void ProgressRing::setFraction(double fraction)
{
    if (fraction == m_fraction)
        return;
    m_fraction = fraction;
    // nobody saw where it stood before
    const bool isSeen =
        std::exchange(m_hasFraction, true) && window() && window()->isVisible() && isVisible();
    const double pixels = std::abs(fraction - m_shown) * std::numbers::pi * (width() - m_stroke)
        * (window() ? window()->effectiveDevicePixelRatio() : 1);
    if (m_glides && isSeen && pixels > 0) {
        constexpr int duration = 30'000;
        const int steps = std::max(1, static_cast<int>(std::ceil(pixels * 2)));
        m_stepSize = (fraction - m_shown) / steps;
        m_timer.start(std::max(duration / steps, 1));
    } else {
        m_timer.stop();
        m_shown = fraction;
        update();
    }
    Q_EMIT fractionChanged();
}

void ProgressRing::step()
{
    m_shown += m_stepSize;
    if (!m_glides || std::abs(m_fraction - m_shown) < std::abs(m_stepSize) / 2) {
        m_shown = m_fraction;
        m_timer.stop();
    }
    update();
}

void ProgressRing::paint(QPainter *painter)
{
    const double inset = m_stroke / 2;
    const QRectF circle = boundingRect().adjusted(inset, inset, -inset, -inset);
    painter->setPen(QPen(m_trackColor, m_stroke));
    painter->drawEllipse(circle);
    if (m_shown <= 0)
        return;
    // QPainter counts in sixteenths of a degree, anticlockwise from three o'clock
    painter->setPen(QPen(m_color, m_stroke, Qt::SolidLine, Qt::RoundCap));
    painter->drawArc(circle, 90 * 16, -static_cast<int>(std::lround(m_shown * 360 * 16)));
}

} // namespace kestrel
