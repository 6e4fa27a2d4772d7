#include "platform/linux/DesktopApplicationLookup.h"
#include "platform/linux/ChromiumBrowsers.h"
#include "platform/linux/DesktopEntry.h"
#include <QFileInfo>
#include <QStandardPaths>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

bool isInstalled(const QString &path)
{
    if (desktopEntryValue(path, "Hidden"_L1) == "true"_L1)
        return false;
    const QString program = desktopEntryValue(path, "TryExec"_L1);
    return program.isEmpty() || !QStandardPaths::findExecutable(program).isEmpty();
}

} // namespace

DesktopApplicationLookup::DesktopApplicationLookup(QStringList folders)
    : m_folders(std::move(folders))
{
}

std::optional<QString> DesktopApplicationLookup::locationOf(const QString &bundleIdentifier) const
{
    for (const ChromiumBrowser &browser : chromiumBrowsers()) {
        if (browser.bundleIdentifier != bundleIdentifier)
            continue;
        if (auto path = locationOf(browser))
            return path;
    }
    return {};
}

std::optional<QString> DesktopApplicationLookup::locationOf(const ChromiumBrowser &browser) const
{
    for (const QString &folder : m_folders) {
        QString path = folder + u'/' + browser.desktopID + u".desktop"_s;
        // the first file of a name stands for all of them, also when it takes the entry away
        if (QFileInfo(path).isFile())
            return isInstalled(path) ? std::optional(path) : std::nullopt;
    }
    return {};
}

QStringList DesktopApplicationLookup::applicationFolders()
{
    QStringList folders = QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
    const QString ownData = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    folders << ownData + u"/flatpak/exports/share/applications"_s
            << u"/var/lib/flatpak/exports/share/applications"_s << u"/var/lib/snapd/desktop/applications"_s;
    folders.removeDuplicates();
    return folders;
}

} // namespace kestrel
