#include "platform/linux/PrivateFile.h"
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

std::expected<void, QString> makePrivateFolder(const QString &folder)
{
    if (QFileInfo(folder).isDir())
        return {};
    if (const QString parent = QFileInfo(folder).path(); parent != folder) {
        if (auto made = makePrivateFolder(parent); !made)
            return made;
    }
    // another process may have been quicker
    if (::mkdir(QFile::encodeName(folder).constData(), S_IRWXU) == 0 || errno == EEXIST) {
        if (QFileInfo(folder).isDir())
            return {};
        errno = ENOTDIR;
    }
    return std::unexpected(u"%1: %2"_s.arg(folder, qt_error_string(errno)));
}

std::expected<void, QString> replaceFile(const QString &path, const QByteArray &content)
{
    const bool isNew = !QFileInfo::exists(path); // an old one's permissions are taken over
    QSaveFile file(path);
    // Unbuffered, because a buffer that is only partly written, as on a full disk, passes for written and the
    // file is then replaced by half of it (Qt 6.4).
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return std::unexpected(file.errorString());
    // QSaveFile creates it with what the umask leaves of 0666. The umask is the process's, and other threads
    // create files and start browsers meanwhile; nothing is in it yet.
    if (isNew && ::fchmod(file.handle(), S_IRUSR | S_IWUSR) != 0)
        return std::unexpected(qt_error_string(errno));
    if (file.write(content) != content.size()) {
        return std::unexpected(file.error() == QFileDevice::NoError
                                   ? u"there is no room for all of it, perhaps because the disk is full"_s
                                   : file.errorString());
    }
    // some file systems say only now that they are full, and commit() does not listen
    if (::fsync(file.handle()) != 0)
        return std::unexpected(qt_error_string(errno));
    if (!file.commit())
        return std::unexpected(file.errorString());
    return {};
}

std::expected<QByteArray, QString> readFile(const QString &path)
{
    constexpr qint64 largest = qint64(16) * 1024 * 1024;
    const QFileInfo entry(path);
    if (!entry.exists())
        return QByteArray();
    // a pipe would wait for ever
    if (!entry.isFile())
        return std::unexpected(u"it is not a file"_s);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return file.exists() ? std::expected<QByteArray, QString>(std::unexpected(file.errorString()))
                             : QByteArray();
    if (file.size() > largest)
        return std::unexpected(u"it is larger than 16 MiB"_s);
    QByteArray content = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return std::unexpected(file.errorString());
    return content;
}

std::expected<std::unique_ptr<QLockFile>, QString> lockFile(const QString &path,
                                                            std::chrono::milliseconds patience)
{
    auto lock = std::make_unique<QLockFile>(path + ".lock"_L1);
    if (lock->tryLock(std::min(patience, 300ms)))
        return lock;
    // A process that is killed before it has written its name into its lock leaves one that QLockFile
    // respects for half a minute.
    const QFileInfo entry(lock->fileName());
    // one from the future was left before the clock was set back
    if (entry.exists() && entry.size() == 0
        && std::abs(entry.lastModified().msecsTo(QDateTime::currentDateTime())) > 200)
        QFile::remove(lock->fileName());
    if (lock->tryLock(patience))
        return lock;
    switch (lock->error()) {
    case QLockFile::PermissionError:
        return std::unexpected(u"its folder cannot be written to"_s);
    case QLockFile::LockFailedError:
        return std::unexpected(u"another program has held %1 for too long"_s.arg(lock->fileName()));
    default:
        return std::unexpected(u"its folder takes no new file, perhaps because the disk is full"_s);
    }
}

std::expected<void, QString> keepBroken(const QString &path, const QByteArray &content)
{
    QString kept = path + ".broken"_L1;
    for (int number = 2; QFileInfo::exists(kept); ++number) {
        if (readFile(kept) == content)
            return {};
        kept = u"%1.broken-%2"_s.arg(path).arg(number);
    }
    return replaceFile(kept, content);
}

} // namespace kestrel
