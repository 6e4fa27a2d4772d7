#pragma once
#include "auth/AuthErrors.h"
#include <QCoro/QCoroTask>
#include <QFuture>
#include <QString>
#include <expected>
#include <functional>
#include <memory>
#include <optional>

namespace kestrel {

/// Lets any number of callers share one refresh. Main thread only.
class TokenRefresher final
{
public:
    using Result = std::expected<QString, AuthError>;
    using Operation = std::function<QCoro::Task<Result>()>;

    TokenRefresher();

    /// Runs `operation`, unless one runs already: then its result is awaited and given to this caller too.
    [[nodiscard]] QCoro::Task<Result> refresh(Operation operation);

private:
    struct State
    {
        std::optional<QFuture<Result>> inFlight;
    };
    std::shared_ptr<State> m_state; ///< shared with the refresh under way, which may outlive this object
};

} // namespace kestrel
