#pragma once
#include <QCoro/QCoroFuture>
#include <QCoro/QCoroTask>
#include <QFuture>
#include <QPromise>
#include <QThread>
#include <functional>
#include <utility>

namespace kestrel {

/// Does `work`, which may block, on a thread of its own, and awaits its result. The thread goes on when
/// nobody waits for it any more, so that `work` must own what it needs.
template<typename Result>
QCoro::Task<Result> onThread(std::function<Result()> work)
{
    QPromise<Result> promise;
    QFuture<Result> future = promise.future();
    promise.start();
    // a thread's own end may come before anybody can wait for it
    QThread *thread = QThread::create([work, promise = std::move(promise)]() mutable {
        promise.addResult(work());
        promise.finish();
    });
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    thread->start();
    co_return co_await future;
}

} // namespace kestrel
