#pragma once
#include "auth/AuthErrors.h"
#include <QCoro/QCoroTask>
#include <QString>
#include <expected>
#include <functional>
#include <memory>

namespace kestrel {

/// Lets any number of callers share one refresh. Main thread only.
class TokenRefresher final
{
public:
    using Result = std::expected<QString, AuthError>;
    using Operation = std::function<QCoro::Task<Result>()>;

    /// Runs `operation`, unless one runs already: then its result is awaited and given to this caller too.
    [[nodiscard]] QCoro::Task<Result> refresh(Operation operation);

private:
    class InFlight;
    std::shared_ptr<InFlight> m_inFlight;
};

} // namespace kestrel
