#include "google/PageTurns.h"

namespace kestrel {

// A timer and not a posted event: Qt delivers events that are posted during the delivery of others in one go.
PageTurns::PageTurns()
{
    m_timer.setInterval(0);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { give(); });
}

void PageTurns::enqueue(std::coroutine_handle<> waiting)
{
    m_waiting.push_back(waiting);
    m_timer.start();
}

void PageTurns::give()
{
    const auto waiting = m_waiting.front();
    m_waiting.pop_front();
    if (m_waiting.empty())
        m_timer.stop();
    waiting.resume(); // may have been the last to share this object
}

} // namespace kestrel
