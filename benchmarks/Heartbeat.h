#pragma once
#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>

namespace kestrel {

/// The longest time that the event loop was away, from its making on: the longest gap of a heartbeat of one
/// millisecond.
class Heartbeat final
{
public:
    Heartbeat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { beat(); });
        m_sinceBeat.start();
        m_timer.start(1);
    }

    /// Milliseconds.
    [[nodiscard]] double longestGap()
    {
        beat();
        return static_cast<double>(m_longest) * 1e-6;
    }

private:
    void beat()
    {
        m_longest = std::max(m_longest, m_sinceBeat.nsecsElapsed());
        m_sinceBeat.start();
    }

    QTimer m_timer;
    QElapsedTimer m_sinceBeat;
    qint64 m_longest = 0;
};

} // namespace kestrel
