#include "platform/linux/ChromiumBrowsers.h"
#include <array>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr auto chrome = "com.google.Chrome"_L1;
constexpr auto beta = "com.google.Chrome.beta"_L1;
constexpr auto canary = "com.google.Chrome.canary"_L1;
constexpr auto chromium = "org.chromium.Chromium"_L1;
constexpr auto brave = "com.brave.Browser"_L1;
constexpr auto edge = "com.microsoft.edgemac"_L1;

// clang-format off
constexpr std::array rows {
    ChromiumBrowser { chrome, "google-chrome"_L1, "Google Chrome"_L1, Packaging::Native, ".config/google-chrome"_L1 },
    ChromiumBrowser { chrome, "google-chrome-stable"_L1, "Google Chrome"_L1, Packaging::Native, ".config/google-chrome"_L1 },
    ChromiumBrowser { chrome, "com.google.Chrome"_L1, "Google Chrome"_L1, Packaging::Flatpak, ".var/app/com.google.Chrome/config/google-chrome"_L1 },
    ChromiumBrowser { beta, "google-chrome-beta"_L1, "Google Chrome Beta"_L1, Packaging::Native, ".config/google-chrome-beta"_L1 },
    ChromiumBrowser { beta, "com.google.Chrome.beta"_L1, "Google Chrome Beta"_L1, Packaging::Flatpak, ".var/app/com.google.Chrome.beta/config/google-chrome-beta"_L1 },
    ChromiumBrowser { canary, "google-chrome-unstable"_L1, "Google Chrome Dev"_L1, Packaging::Native, ".config/google-chrome-unstable"_L1 },
    ChromiumBrowser { canary, "com.google.Chrome.unstable"_L1, "Google Chrome Dev"_L1, Packaging::Flatpak, ".var/app/com.google.Chrome.unstable/config/google-chrome-unstable"_L1 },
    ChromiumBrowser { canary, "com.google.ChromeDev"_L1, "Google Chrome Dev"_L1, Packaging::Flatpak, ".var/app/com.google.ChromeDev/config/google-chrome-unstable"_L1 },
    ChromiumBrowser { chromium, "chromium"_L1, "Chromium"_L1, Packaging::Native, ".config/chromium"_L1 },
    ChromiumBrowser { chromium, "chromium-browser"_L1, "Chromium"_L1, Packaging::Native, ".config/chromium"_L1 },
    ChromiumBrowser { chromium, "org.chromium.Chromium"_L1, "Chromium"_L1, Packaging::Flatpak, ".var/app/org.chromium.Chromium/config/chromium"_L1 },
    ChromiumBrowser { chromium, "chromium_chromium"_L1, "Chromium"_L1, Packaging::Snap, "snap/chromium/common/chromium"_L1 },
    ChromiumBrowser { brave, "brave-browser"_L1, "Brave"_L1, Packaging::Native, ".config/BraveSoftware/Brave-Browser"_L1 },
    ChromiumBrowser { brave, "com.brave.Browser"_L1, "Brave"_L1, Packaging::Flatpak, ".var/app/com.brave.Browser/config/BraveSoftware/Brave-Browser"_L1 },
    ChromiumBrowser { brave, "brave_brave"_L1, "Brave"_L1, Packaging::Snap, "snap/brave/current/.config/BraveSoftware/Brave-Browser"_L1 },
    ChromiumBrowser { edge, "microsoft-edge"_L1, "Microsoft Edge"_L1, Packaging::Native, ".config/microsoft-edge"_L1 },
    ChromiumBrowser { edge, "com.microsoft.Edge"_L1, "Microsoft Edge"_L1, Packaging::Flatpak, ".var/app/com.microsoft.Edge/config/microsoft-edge"_L1 },
};
// clang-format on

} // namespace

std::span<const ChromiumBrowser> chromiumBrowsers()
{
    return rows;
}

} // namespace kestrel
