#include "app/BrowserVerb.h"
#include "app/BrowserText.h"
#include "platform/linux/DesktopApplicationLookup.h"
#include <QDir>
#include <QJsonDocument>
#include <QStandardPaths>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kestrel {

BrowserPlaces browserPlaces(const InstancePlace &place)
{
    BrowserPlaces places { QDir::homePath(),
                           QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation),
                           DesktopApplicationLookup::applicationFolders(),
                           u":/kestrel/browser-extension"_s,
                           QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
                               + u"/kestrel/browser-extension"_s,
                           place.browserSockets,
                           companionProgram("kestrel-browser-relay"_L1) };
    if (const QString prefix = installPrefix(); place.install.isPassing(prefix + u'/')) {
        places.isPassing = true;
        places.relayProgram = place.install.destination + places.relayProgram.sliced(prefix.size());
    }
    if (!place.dataFolder.isEmpty()) {
        places.home = place.dataFolder + u"/home"_s;
        places.configuration = places.home + u"/.config"_s;
        places.extension = place.dataFolder + u"/browser-extension"_s;
    }
    return places;
}

VerbResult browserVerb(const CommandLine &line, const InstancePlace &place)
{
    const BrowserPlaces places = browserPlaces(place);
    const BrowserSetup setup(places);
    if (line.arguments[0] == "status"_L1) {
        const BrowserReport report = setup.status();
        const QString text =
            line.json ? QString::fromUtf8(QJsonDocument(toJson(report)).toJson()) : reportText(report);
        return { ExitCode::Success, text, {} };
    }
    const auto installed = setup.install();
    if (!installed)
        return { ExitCode::Failed, {}, installed.error() + u'\n' };
    const bool isDone =
        std::ranges::any_of(*installed,
                            [](const auto &browser) { return browser.packaging == Packaging::Native; })
        && std::ranges::all_of(*installed, [](const auto &browser) { return browser.error.isEmpty(); });
    const QString text = installationText(*installed, places.extension);
    return isDone ? VerbResult { ExitCode::Success, text, {} } : VerbResult { ExitCode::Failed, {}, text };
}

} // namespace kestrel
