#pragma once
#include "base/StartTask.h"
#include <QCoro/QCoroTask>
#include <QHash>
#include <QTimer>
#include <chrono>
#include <coroutine>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace kestrel {

/// A value that comes once and that any number of coroutines may wait for. Copies are the same one. Whoever
/// holds it last settles it first: what is never settled is waited for for ever. Main thread only.
template<typename T>
class Awaited
{
public:
    /// Whoever waits goes on before this returns. False when it was settled before; `value` is then dropped.
    bool settle(T value) const
    {
        const auto state = m_state;
        if (state->value)
            return false;
        state->value = std::move(value);
        for (const auto &goOn : std::exchange(state->waiting, {}))
            goOn();
        return true;
    }

    [[nodiscard]] const std::optional<T> &value() const { return m_state->value; }

    /// Calls `next` when it is settled, at once if it is.
    void then(std::function<void()> next) const
    {
        if (m_state->value)
            next();
        else
            m_state->waiting.push_back(std::move(next));
    }

    [[nodiscard]] bool await_ready() const noexcept { return m_state->value.has_value(); }
    void await_suspend(std::coroutine_handle<> handle) const
    {
        then([handle] { handle.resume(); });
    }
    T await_resume() const { return *m_state->value; }

private:
    struct State
    {
        std::optional<T> value;
        std::vector<std::function<void()>> waiting;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

/// What a task will give, for several to wait for.
template<typename T>
Awaited<T> started(const char *name, QCoro::Task<T> task)
{
    Awaited<T> awaited;
    startTask(name, [](QCoro::Task<T> running, Awaited<T> result) -> QCoro::Task<void> {
        result.settle(co_await running);
    }(std::move(task), awaited));
    return awaited;
}

/// The value, or nothing when it is not there after `bound`. It may still come later.
template<typename T>
QCoro::Task<std::optional<T>> within(std::chrono::milliseconds bound, Awaited<T> awaited)
{
    if (awaited.value() || bound.count() <= 0)
        co_return awaited.value();
    const Awaited<bool> either;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, [either] { either.settle(false); });
    timer.start(bound);
    awaited.then([either] { either.settle(true); });
    co_await either;
    co_return awaited.value();
}

/// Questions whose answer is under way are not asked again: who asks the same waits for that answer.
template<typename T>
class SharedAnswers
{
public:
    Awaited<T> answer(const QString &key, const char *name, const std::function<QCoro::Task<T>()> &ask)
    {
        if (const auto found = m_underWay->find(key); found != m_underWay->end())
            return *found;
        Awaited<T> awaited = started(name, ask());
        if (!awaited.value()) {
            m_underWay->insert(key, awaited);
            awaited.then([underWay = std::weak_ptr(m_underWay), key] {
                if (const auto all = underWay.lock())
                    all->remove(key);
            });
        }
        return awaited;
    }

private:
    using Answers = QHash<QString, Awaited<T>>;
    std::shared_ptr<Answers> m_underWay = std::make_shared<Answers>();
};

} // namespace kestrel
