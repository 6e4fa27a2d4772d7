#pragma once
#include <QLatin1StringView>
#include <span>

namespace kestrel {

/// How a browser was packaged: sandboxed ones cannot start programs of ours.
enum class Packaging { Native, Flatpak, Snap };

/// One way in which a Chromium-family browser may be installed.
struct ChromiumBrowser
{
    QLatin1StringView bundleIdentifier;
    QLatin1StringView desktopID; ///< of its .desktop file, without the suffix
    QLatin1StringView name;
    Packaging packaging = Packaging::Native;
    QLatin1StringView dataFolder; ///< of its profiles, below the home folder
};

/// All that we know, in the order in which they are looked for; per browser what its packages name it, then
/// Flatpak, then Snap.
[[nodiscard]] std::span<const ChromiumBrowser> chromiumBrowsers();

} // namespace kestrel
