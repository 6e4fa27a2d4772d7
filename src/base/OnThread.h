#pragma once
#include <QCoro/QCoroFuture>
#include <QCoro/QCoroTask>
#include <QFuture>
#include <QPromise>
#include <functional>
#include <memory>
#include <utility>

namespace kestrel {

/// Does `work`, which may block, on a thread of its own that nobody waits for, so that `work` must own what
/// it needs. False when the system has no thread left; `work` is not done then.
[[nodiscard]] bool startThread(std::function<void()> work);

/// The way out of main(): gives `exitCode` back or, while a thread of startThread() is at work, ends the
/// process at once. The destructors of static objects would take from the thread what it is using.
[[nodiscard]] int leaveMain(int exitCode);

/// Does `work` on a thread of its own and awaits its result; the thread goes on when nobody waits for it any
/// more. Where the system has no thread left, `work` is done here.
template<typename Result>
QCoro::Task<Result> onThread(std::function<Result()> work)
{
    const auto promise = std::make_shared<QPromise<Result>>();
    QFuture<Result> future = promise->future();
    promise->start();
    const auto finish = [promise, work = std::move(work)] {
        promise->addResult(work());
        promise->finish();
    };
    if (!startThread(finish))
        finish();
    co_return co_await future;
}

} // namespace kestrel
