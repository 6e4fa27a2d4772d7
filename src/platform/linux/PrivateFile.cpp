#include "platform/linux/PrivateFile.h"
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QScopeGuard>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

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
    QSaveFile file(path);
    {
        // QSaveFile creates its temporary file with what the umask leaves of 0666
        const mode_t before = ::umask(S_IRWXG | S_IRWXO);
        const auto restore = qScopeGuard([before] { ::umask(before); });
        if (!file.open(QIODevice::WriteOnly))
            return std::unexpected(file.errorString());
    }
    if (file.write(content) != content.size() || !file.commit())
        return std::unexpected(file.errorString());
    return {};
}

std::expected<QByteArray, QString> readFile(const QString &path)
{
    constexpr qint64 largest = 16 * 1024 * 1024;
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
    QByteArray content = file.read(largest + 1);
    if (file.error() != QFileDevice::NoError)
        return std::unexpected(file.errorString());
    if (content.size() > largest)
        return std::unexpected(u"it is larger than 16 MiB"_s);
    return content;
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
