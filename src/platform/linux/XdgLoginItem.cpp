#include "platform/linux/XdgLoginItem.h"
#include "base/AppIdentifier.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/PrivateFile.h"
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// The entry as it is installed for others to read; its program is found through PATH.
QByteArray autostartTemplate()
{
    QFile file(u":/kestrel/autostart.desktop"_s);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool isSwitchedOff(const QByteArray &entry)
{
    const QList<QByteArray> lines = entry.split('\n');
    return std::ranges::any_of(lines, [](const QByteArray &line) {
        const QByteArray bare = line.simplified().replace(' ', "").toLower();
        return bare == "hidden=true" || bare == "x-gnome-autostart-enabled=false";
    });
}

} // namespace

XdgLoginItem::XdgLoginItem(const QString &autostartFolder, const QString &program)
    : m_file(QDir(autostartFolder).filePath(AppIdentifier + ".desktop"_L1))
    , m_program(program)
{
}

std::expected<void, QString> XdgLoginItem::setEnabled(bool enabled)
{
    const auto present = readFile(m_file);
    if (!enabled) {
        if (!QFileInfo::exists(m_file) && !QFileInfo(m_file).isSymLink())
            return {};
        QFile file(m_file);
        if (!file.remove())
            return std::unexpected(u"%1: %2"_s.arg(m_file, file.errorString()));
        return {};
    }
    if (!present)
        return std::unexpected(u"%1: %2"_s.arg(m_file, present.error()));
    if (isSwitchedOff(*present))
        return std::unexpected(u"%1 is switched off in the desktop's own settings"_s.arg(m_file));
    const auto wanted = content();
    if (!wanted)
        return std::unexpected(wanted.error());
    if (*wanted == *present)
        return {};
    if (auto made = makePrivateFolder(QFileInfo(m_file).path()); !made)
        return made;
    if (const auto replaced = replaceFile(m_file, *wanted); !replaced)
        return std::unexpected(u"%1: %2"_s.arg(m_file, replaced.error()));
    return {};
}

LoginItemState XdgLoginItem::state() const
{
    const auto present = readFile(m_file);
    if (!present || present->isEmpty())
        return LoginItemState::Off;
    if (isSwitchedOff(*present))
        return LoginItemState::SwitchedOff;
    const QString desktops =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/autostart"_s;
    return QFileInfo(m_file).dir() == QDir(desktops) ? LoginItemState::On : LoginItemState::Ineffective;
}

std::expected<QByteArray, QString> XdgLoginItem::content() const
{
    if (const auto named = withProgram(autostartTemplate(), m_program))
        return *named;
    return std::unexpected(u"no autostart entry can name the program %1"_s.arg(m_program));
}

} // namespace kestrel
