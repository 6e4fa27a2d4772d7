#pragma once
#include <QHashFunctions>
#include <optional>

namespace kestrel {

/// Whether there is a value, then the value: an absent text and an empty one hash apart.
template<typename T>
[[nodiscard]] size_t optionalHash(const std::optional<T> &value)
{
    return value ? qHashMulti(0, true, *value) : qHashMulti(0, false);
}

} // namespace kestrel
