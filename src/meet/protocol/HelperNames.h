#pragma once
#include <QLatin1StringView>

namespace kestrel {

/// Where the browser helper is reached, as the interface file beside this one says: its bus name is that of
/// its Kestrel with this suffix.
inline constexpr QLatin1StringView helperNameSuffix { ".ChromeLauncher" };
inline constexpr QLatin1StringView helperPath { "/app/kestrel/ChromeLauncher" };
inline constexpr QLatin1StringView helperInterface { "app.kestrel.ChromeLauncher1" };

} // namespace kestrel
