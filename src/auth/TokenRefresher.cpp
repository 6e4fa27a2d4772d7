#include "auth/TokenRefresher.h"
#include <QCoro/QCoroFuture>
#include <QPromise>

namespace kestrel {

TokenRefresher::TokenRefresher()
    : m_state(std::make_shared<State>())
{
}

QCoro::Task<TokenRefresher::Result> TokenRefresher::refresh(Operation operation)
{
    const auto state = m_state; // outlives the refresher where the operation does
    if (state->inFlight)
        co_return co_await *state->inFlight;

    QPromise<Result> promise;
    promise.start();
    state->inFlight = promise.future();
    auto result = co_await operation();
    state->inFlight.reset();
    promise.addResult(result);
    promise.finish();
    co_return result;
}

} // namespace kestrel
