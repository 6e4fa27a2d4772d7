#pragma once
#include <QLatin1StringView>

namespace kestrel {

/// Bus name, desktop file name, Wayland application id and AppStream id alike.
inline constexpr QLatin1StringView AppIdentifier { "app.kestrel.Kestrel" };

} // namespace kestrel
