#include "menubar/OngoingProgress.h"
#include <QCoreApplication>
#include <QLocale>
#include <algorithm>

namespace kestrel {

void OngoingProgress::update(Instant start, Instant end, Instant now)
{
    const std::chrono::duration<double> total = end - start;
    const std::chrono::duration<double> passed = now - start;
    m_fraction = total.count() <= 0 ? 0 : std::clamp(passed / total, 0.0, 1.0);
    m_minutesLeft = static_cast<int>(
        std::chrono::duration_cast<std::chrono::minutes>(std::max(end - now, Instant::duration(0))).count());
    Q_EMIT changed();
}

QString OngoingProgress::minutesLeft() const
{
    return QLocale().toString(m_minutesLeft);
}

QString OngoingProgress::accessibleText() const
{
    return qtTrId("popover.minutes_left %n", m_minutesLeft);
}

} // namespace kestrel
