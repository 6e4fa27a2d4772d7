#include "helper/DesktopIntegration.h"
#include "base/AppIdentifier.h"
#include "base/Log.h"
#include "meet/protocol/HelperNames.h"
#include "meet/protocol/ServiceFile.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/PrivateFile.h"
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// The folder of the icon theme that every other one falls back to.
constexpr auto iconTheme = "/icons/hicolor"_L1;

std::unexpected<QString> failure(const QString &path, const QString &description)
{
    return std::unexpected(u"%1: %2"_s.arg(path, description));
}

} // namespace

std::expected<DesktopIntegration, QString> DesktopIntegration::read(const QString &bundle,
                                                                    const InstallPlaces &places)
{
    DesktopIntegration integration;
    integration.m_program = places.destination + u"/bin/kestrel"_s;
    integration.m_command = places.commands + u"/kestrel"_s;
    integration.m_iconTheme = places.share + iconTheme;

    const QString entryName = u"/applications/"_s + AppIdentifier + u".desktop"_s;
    const QString entryPath = bundle + u"/share"_s + entryName;
    const auto entry = readFile(entryPath);
    if (!entry)
        return failure(entryPath, entry.error());
    const auto named = withProgram(*entry, integration.m_program);
    if (!named)
        return std::unexpected(u"No menu entry can name the program %1"_s.arg(integration.m_program));
    integration.m_files.append({ places.share + entryName, *named });

    if (const auto icons = integration.readIcons(bundle + u"/share"_s + iconTheme); !icons)
        return std::unexpected(icons.error());

    const QString service = AppIdentifier + helperNameSuffix;
    const QByteArray content =
        serviceFile(service, { places.destination + u"/libexec/kestrel/kestrel-browser-helper"_s });
    integration.m_files.append({ places.share + u"/dbus-1/services/"_s + service + u".service"_s, content });
    return integration;
}

std::expected<void, QString> DesktopIntegration::readIcons(const QString &theme)
{
    QDirIterator icons(theme, { AppIdentifier + u"*"_s }, QDir::Files, QDirIterator::Subdirectories);
    while (icons.hasNext()) {
        const QString path = icons.next();
        const auto content = readFile(path);
        if (!content)
            return failure(path, content.error());
        m_files.append({ m_iconTheme + path.sliced(theme.size()), *content });
    }
    return {};
}

std::expected<void, QString> DesktopIntegration::write()
{
    for (File &file : m_files) {
        if (const auto written = writeFile(file); !written) {
            undo();
            return failure(file.path, written.error());
        }
    }
    if (const auto linked = linkCommand(); !linked) {
        undo();
        return failure(m_command, linked.error());
    }
    // desktops learn from this folder's time that there are new icons
    ::utimensat(AT_FDCWD, QFile::encodeName(m_iconTheme).constData(), nullptr, 0);
    return {};
}

std::expected<void, QString> DesktopIntegration::writeFile(File &file)
{
    const auto present = readFile(file.path);
    if (!present)
        return std::unexpected(present.error());
    if (QFileInfo::exists(file.path))
        file.before = *present;
    if (auto made = makePrivateFolder(QFileInfo(file.path).path()); !made)
        return made;
    if (auto replaced = replaceFile(file.path, file.content); !replaced)
        return replaced;
    file.isWritten = true;
    return {};
}

std::expected<void, QString> DesktopIntegration::linkCommand()
{
    const QByteArray command = QFile::encodeName(m_command);
    struct stat entry {};
    if (::lstat(command.constData(), &entry) == 0) {
        if (!S_ISLNK(entry.st_mode) || QFile::symLinkTarget(m_command) != m_program)
            qCWarning(lcApp).noquote() << m_command << "is another program and stays";
        return {};
    }
    if (auto made = makePrivateFolder(QFileInfo(m_command).path()); !made)
        return made;
    m_isLinked = ::symlink(QFile::encodeName(m_program).constData(), command.constData()) == 0;
    return m_isLinked ? std::expected<void, QString>() : std::unexpected(qt_error_string(errno));
}

void DesktopIntegration::undo()
{
    if (m_isLinked)
        QFile::remove(m_command);
    for (File &file : m_files) {
        if (!file.isWritten)
            continue;
        if (!file.before)
            QFile::remove(file.path);
        else if (const auto back = replaceFile(file.path, *file.before); !back)
            qCWarning(lcApp).noquote() << file.path << "could not be put back:" << back.error();
        file.isWritten = false;
    }
}

} // namespace kestrel
