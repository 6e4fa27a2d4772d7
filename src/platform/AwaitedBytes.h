#pragma once
#include <QCoro/QCoroTask>
#include <cstddef>

/// To be included where a task of std::expected<QByteArray, …> is declared. QCoro compares the task's handle
/// with nullptr; libstdc++ 12 takes that nullptr for an expected QByteArray and then fails over its own
/// operator. This comparison is the better match.
namespace QCoro::detail {

template<typename T>
constexpr bool operator==(std::coroutine_handle<TaskPromise<T>> handle, std::nullptr_t) noexcept
{
    return !handle;
}

} // namespace QCoro::detail
