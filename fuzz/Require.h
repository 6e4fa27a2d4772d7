#pragma once
#include <cstdlib>

namespace kestrel {

/// Ends the program where a promise is not kept; the stack above shows which.
inline void require(bool isKept)
{
    if (!isKept)
        std::abort();
}

} // namespace kestrel
