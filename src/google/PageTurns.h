#pragma once
#include <QTimer>
#include <coroutine>
#include <deque>

namespace kestrel {

/// Lets one coroutine at a time go on with a page's worth of work, and the event loop run in between. The
/// answers of many accounts come in together; decoded one after the other they would hold the main thread for
/// as long as all of them take. Shared by those who wait, so that it lives as long as any of them does. Main
/// thread only.
class PageTurns final
{
public:
    class Turn
    {
    public:
        explicit Turn(PageTurns &turns)
            : m_turns(turns)
        {
        }
        [[nodiscard]] bool await_ready() const noexcept { return false; }
        void await_suspend(std::coroutine_handle<> waiting) { m_turns.enqueue(waiting); }
        void await_resume() const noexcept { }

    private:
        PageTurns &m_turns;
    };

    PageTurns();

    /// To be awaited: resumes when those who asked before have had their turn.
    [[nodiscard]] Turn next() { return Turn(*this); }

private:
    void enqueue(std::coroutine_handle<> waiting);
    void give();

    QTimer m_timer;
    std::deque<std::coroutine_handle<>> m_waiting;
};

} // namespace kestrel
