#include "platform/linux/DesktopApplicationLookup.h"
#include "platform/linux/ChromiumBrowsers.h"
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTextStream>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// The value of a key of the file's main group; empty when it has none.
QString entry(const QString &path, QLatin1StringView key)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QTextStream text(&file);
    bool isMainGroup = false;
    for (QString line; text.readLineInto(&line);) {
        const QString trimmed = line.trimmed();
        if (trimmed.startsWith(u'[')) {
            isMainGroup = trimmed == "[Desktop Entry]"_L1;
            continue;
        }
        const qsizetype equals = trimmed.indexOf(u'=');
        if (isMainGroup && equals > 0 && QStringView(trimmed).first(equals).trimmed() == key)
            return trimmed.mid(equals + 1).trimmed();
    }
    return {};
}

bool isInstalled(const QString &path)
{
    if (entry(path, "Hidden"_L1) == "true"_L1)
        return false;
    const QString program = entry(path, "TryExec"_L1);
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
