#pragma once
#include <QHash>
#include <QObject>
#include <chrono>
#include <functional>
#include <utility>

namespace kestrel {

/// Knows every living QObject of the process, and lets their timers run at any speed. One a process, made
/// before the application object. Main thread only.
class TimeLapse final
{
public:
    TimeLapse();
    ~TimeLapse();
    TimeLapse(const TimeLapse &) = delete;
    TimeLapse &operator=(const TimeLapse &) = delete;

    /// In all threads.
    [[nodiscard]] static qsizetype objects();
    /// Those by class, for a person who looks for the ones too many.
    [[nodiscard]] static QHash<QByteArray, int> objectsByClass();
    /// Those that run in the main thread.
    [[nodiscard]] static qsizetype timers();

    /// Every timer of the main thread that is due within `span` fires, once, and no more often than it would
    /// over many calls. What the timers of others start waits for the next call.
    void pass(std::chrono::milliseconds span);

private:
    using Timer = std::pair<QObject *, int>;

    QHash<Timer, std::chrono::milliseconds> m_waited;
};

} // namespace kestrel
