#pragma once
#include <QLatin1StringView>

namespace kestrel {

/// What the address of every Meet tab contains.
inline constexpr QLatin1StringView meetTabMarker { "meet.google.com/" };

} // namespace kestrel
