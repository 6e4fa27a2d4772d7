#include "ui/Countdown.h"
#include <QCoreApplication>
#include <cmath>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// "5m" or "1h 15m".
QString amountText(int minutes)
{
    if (minutes < 60)
        return QString::number(minutes) + u'm';
    return QString::number(minutes / 60) + u"h "_s + QString::number(minutes % 60) + u'm';
}

} // namespace

Countdown::Countdown(const Clock &clock, Instant start, QObject *parent)
    : QObject(parent)
    , m_clock(clock)
    , m_start(start)
{
    m_timer.setInterval(std::chrono::seconds(1));
    connect(&m_timer, &QTimer::timeout, this, &Countdown::tick);
    tick();
}

void Countdown::setRunning(bool run)
{
    if (run == m_timer.isActive())
        return;
    if (run) {
        tick();
        m_timer.start();
    } else {
        m_timer.stop();
    }
    Q_EMIT runningChanged();
}

void Countdown::setStart(Instant start)
{
    m_start = start;
    tick();
}

void Countdown::tick()
{
    const double remaining = std::chrono::duration<double>(m_start - m_clock.now()).count();
    const auto nearness = remaining < 120 ? Nearness::Now
        : remaining < 600                 ? Nearness::Soon
                                          : Nearness::Later;
    QString text;
    if (std::abs(remaining) < 60) {
        text = qtTrId("countdown.now");
    } else {
        const QString amount = amountText(static_cast<int>(std::ceil(std::abs(remaining) / 60)));
        text = (remaining > 0 ? qtTrId("countdown.in_x") : qtTrId("countdown.ago_x")).arg(amount);
    }
    if (text == m_text && nearness == m_nearness)
        return;
    m_text = text;
    m_nearness = nearness;
    Q_EMIT changed();
}

} // namespace kestrel
