#include "app/SetupBrowserConnection.h"
#include "base/OnThread.h"
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

BrowserConnectionState stateOf(const BrowserReport &report)
{
    BrowserConnectionState state;
    bool isScriptingOn = false;
    for (const BrowserCondition &browser : report.browsers) {
        if (browser.manifest == HostManifest::Impossible)
            continue;
        state.browsers.append(browser.name);
        if (browser.manifest == HostManifest::Current && !report.installedRevision.isEmpty())
            state.isInstalled = true;
        for (const BrowserRelay &relay : browser.relays) {
            if (!relay.allowsScripts)
                continue;
            if (!state.connected.contains(browser.name))
                state.connected.append(browser.name);
            isScriptingOn = isScriptingOn || *relay.allowsScripts;
        }
    }
    state.isOwnProfileOpen = std::ranges::any_of(
        report.otherRelays, [](const BrowserRelay &relay) { return relay.route == "devtools"_L1; });
    state.isScriptingOff = !state.connected.isEmpty() && !isScriptingOn;
    return state;
}

std::expected<QString, QString> installed(const BrowserPlaces &places)
{
    const auto browsers = BrowserSetup(places).install();
    if (!browsers)
        return std::unexpected(browsers.error());
    const auto failed = std::ranges::find_if(
        *browsers, [](const BrowserInstallation &browser) { return !browser.error.isEmpty(); });
    if (failed != browsers->end())
        return std::unexpected(u"%1: %2: %3"_s.arg(failed->name, failed->manifestFile, failed->error));
    return places.extension;
}

} // namespace

SetupBrowserConnection::SetupBrowserConnection(BrowserPlaces places)
    : m_places(std::move(places))
{
}

QCoro::Task<BrowserConnectionState> SetupBrowserConnection::state()
{
    return onThread<BrowserConnectionState>(
        [places = m_places] { return stateOf(BrowserSetup(places).status()); });
}

QCoro::Task<std::expected<QString, QString>> SetupBrowserConnection::install()
{
    return onThread<std::expected<QString, QString>>([places = m_places] { return installed(places); });
}

} // namespace kestrel
