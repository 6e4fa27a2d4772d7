#include "platform/linux/IniPreferenceStore.h"
#include "base/Log.h"
#include "platform/linux/PrivateFile.h"
#include <QFileInfo>
#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

IniPreferenceStore::IniPreferenceStore(const QString &path, std::chrono::milliseconds lockPatience)
    : m_path(QFileInfo(path).absoluteFilePath())
    , m_lockPatience(lockPatience)
{
    m_settling.setSingleShot(true);
    m_settling.setInterval(100ms);
    connect(&m_settling, &QTimer::timeout, this, [this] {
        watch();
        if (load())
            Q_EMIT changedElsewhere();
    });
    const auto settle = [this] {
        if (!m_settling.isActive())
            m_settling.start();
    };
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, settle);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, settle);
    watch();
    load();
}

std::optional<qint64> IniPreferenceStore::integer(const QString &key) const
{
    return m_text.integer(key);
}

std::optional<bool> IniPreferenceStore::boolean(const QString &key) const
{
    return m_text.boolean(key);
}

std::optional<QString> IniPreferenceStore::string(const QString &key) const
{
    return m_text.string(key);
}

std::optional<QStringList> IniPreferenceStore::stringList(const QString &key) const
{
    return m_text.stringList(key);
}

std::optional<QByteArray> IniPreferenceStore::data(const QString &key) const
{
    return m_text.data(key);
}

void IniPreferenceStore::setInteger(const QString &key, qint64 value)
{
    write([&](IniText &text) { text.setInteger(key, value); });
}

void IniPreferenceStore::setBoolean(const QString &key, bool value)
{
    write([&](IniText &text) { text.setBoolean(key, value); });
}

void IniPreferenceStore::setString(const QString &key, const QString &value)
{
    write([&](IniText &text) { text.setString(key, value); });
}

void IniPreferenceStore::setStringList(const QString &key, const QStringList &value)
{
    write([&](IniText &text) { text.setStringList(key, value); });
}

void IniPreferenceStore::setData(const QString &key, const QByteArray &value)
{
    write([&](IniText &text) { text.setData(key, value); });
}

void IniPreferenceStore::remove(const QString &key)
{
    write([&](IniText &text) { text.remove(key); });
}

void IniPreferenceStore::write(const Edit &edit)
{
    // what would change nothing creates no file, no folder and no lock
    if (const auto current = readFile(m_path); current) {
        IniText text(*current);
        edit(text);
        if (text.text() == *current && *current == m_text.text())
            return;
    }
    const auto changedMeanwhile = writeLocked(edit);
    if (!changedMeanwhile) {
        Q_EMIT writeFailed(m_path, changedMeanwhile.error());
        return;
    }
    watch();
    Q_EMIT stored();
    if (*changedMeanwhile)
        Q_EMIT changedElsewhere();
}

std::expected<bool, QString> IniPreferenceStore::writeLocked(const Edit &edit)
{
    if (const auto made = makePrivateFolder(QFileInfo(m_path).path()); !made)
        return std::unexpected(made.error());
    const auto lock = lockFile(m_path, m_lockPatience);
    if (!lock)
        return std::unexpected(lock.error());
    const auto current = readFile(m_path);
    if (!current)
        return std::unexpected(current.error());
    IniText text(*current);
    if (text.isDamaged()) {
        if (const auto kept = keepBroken(m_path, *current); !kept)
            return std::unexpected(u"a copy of the damaged file could not be kept: "_s + kept.error());
        text.dropDamagedLines();
    }
    edit(text);
    if (const QByteArray content = text.text(); content != *current) {
        if (const auto replaced = replaceFile(m_path, content); !replaced)
            return std::unexpected(replaced.error());
    }
    const bool changedMeanwhile = *current != m_text.text();
    m_text = text;
    return changedMeanwhile;
}

bool IniPreferenceStore::load()
{
    const auto content = readFile(m_path);
    if (!content) {
        qCWarning(lcApp).noquote() << "The settings in" << m_path << "cannot be read:" << content.error();
        return false;
    }
    if (*content == m_text.text())
        return false;
    m_text = IniText(*content);
    if (m_text.isDamaged())
        qCWarning(lcApp).noquote() << m_path << "is damaged; what can be read of it counts";
    return true;
}

void IniPreferenceStore::watch()
{
    // The file for editors that write into it, its folder for those that replace it; where there is no folder
    // yet, the nearest one above it. A linked file is replaced in a folder of its own.
    QString folder = QFileInfo(m_path).path();
    while (!QFileInfo(folder).isDir() && folder != "/"_L1)
        folder = QFileInfo(folder).path();
    QStringList wanted { folder };
    if (const QString target = QFileInfo(m_path).canonicalFilePath(); !target.isEmpty()) {
        wanted.append(m_path);
        wanted.append(QFileInfo(target).path());
    }
    // a replaced file is another one under the old name, which the watcher may not have noticed yet
    m_watcher.removePath(m_path);
    const QStringList watched = m_watcher.files() + m_watcher.directories();
    for (const QString &path : watched) {
        if (!wanted.contains(path))
            m_watcher.removePath(path);
    }
    for (const QString &path : std::as_const(wanted)) {
        if (!watched.contains(path))
            m_watcher.addPath(path);
    }
}

} // namespace kestrel
