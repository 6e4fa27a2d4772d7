#pragma once
#include <QCoro/QCoroTask>
#include <memory>
#include <optional>

namespace kestrel {

/// Starts `task` and gives the place where its result will stand.
template<typename T>
std::shared_ptr<std::optional<T>> started(QCoro::Task<T> task)
{
    auto result = std::make_shared<std::optional<T>>();
    [](QCoro::Task<T> pending, std::shared_ptr<std::optional<T>> place) -> QCoro::Task<void> {
        *place = co_await pending;
    }(std::move(task), result);
    return result;
}

} // namespace kestrel
