#include "helper/BundleInstaller.h"
#include "base/AppIdentifier.h"
#include "helper/DesktopIntegration.h"
#include "platform/linux/PrivateFile.h"
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QUuid>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

using Outcome = std::expected<void, QString>;

std::unexpected<QString> failure(const QString &path, int error)
{
    return std::unexpected(u"%1: %2"_s.arg(path, qt_error_string(error)));
}

/// One copy under way.
struct Copy
{
    QString root; ///< where it comes from
    std::chrono::milliseconds patience;
    QElapsedTimer elapsed;

    [[nodiscard]] bool isLate() const { return elapsed.elapsed() >= patience.count(); }
};

Outcome tooLate()
{
    return std::unexpected(u"The copy took too long"_s);
}

Outcome copyContent(const Copy &copy, int from, int to, const QString &source, const QString &target)
{
    static thread_local std::array<char, 262144> buffer;
    for (;;) {
        if (copy.isLate())
            return tooLate();
        const ssize_t count = ::read(from, buffer.data(), buffer.size());
        if (count < 0)
            return failure(source, errno);
        if (count == 0)
            break;
        for (ssize_t at = 0; at < count;) {
            const ssize_t written = ::write(to, buffer.data() + at, static_cast<std::size_t>(count - at));
            if (written < 0)
                return failure(target, errno);
            at += written;
        }
    }
    return ::fsync(to) == 0 ? Outcome() : failure(target, errno);
}

Outcome syncFolder(const QString &path)
{
    const int folder = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return failure(path, errno);
    const auto close = qScopeGuard([folder] { ::close(folder); });
    return ::fsync(folder) == 0 ? Outcome() : failure(path, errno);
}

Outcome copyFile(const Copy &copy, const QString &source, const QString &target)
{
    const int from = ::open(QFile::encodeName(source).constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (from < 0)
        return failure(source, errno);
    const auto closeFrom = qScopeGuard([from] { ::close(from); });
    struct stat entry {};
    if (::fstat(from, &entry) != 0)
        return failure(source, errno);
    const int to = ::open(QFile::encodeName(target).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                          (entry.st_mode & S_IXUSR) != 0 ? 0755 : 0644);
    if (to < 0)
        return failure(target, errno);
    const auto closeTo = qScopeGuard([to] { ::close(to); });
    return copyContent(copy, from, to, source, target);
}

Outcome copyLink(const Copy &copy, const QString &source, const QString &target)
{
    // QFile::symLinkTarget() gives an absolute path
    std::array<char, 4096> buffer {};
    const ssize_t length =
        ::readlink(QFile::encodeName(source).constData(), buffer.data(), buffer.size() - 1);
    if (length < 0)
        return failure(source, errno);
    const QString leadsTo = QFile::decodeName(buffer.data());
    const QString end = QDir::cleanPath(QFileInfo(source).path() + u'/' + leadsTo);
    if (leadsTo.startsWith(u'/') || !(end == copy.root || end.startsWith(copy.root + u'/')))
        return std::unexpected(u"The link %1 leads out of the folder"_s.arg(source));
    return ::symlink(buffer.data(), QFile::encodeName(target).constData()) == 0 ? Outcome()
                                                                                : failure(target, errno);
}

Outcome copyFolder(const Copy &copy, const QString &source, const QString &target)
{
    const QByteArray path = QFile::encodeName(target);
    if (::mkdir(path.constData(), 0755) != 0)
        return failure(target, errno);
    const QStringList names =
        QDir(source).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        if (copy.isLate())
            return tooLate();
        const QString from = source + u'/' + name;
        const QString to = target + u'/' + name;
        struct stat entry {};
        if (::lstat(QFile::encodeName(from).constData(), &entry) != 0)
            return failure(from, errno);
        if (entry.st_uid != ::getuid() && entry.st_uid != 0)
            return std::unexpected(u"%1 belongs to somebody else"_s.arg(from));
        Outcome copied = S_ISDIR(entry.st_mode) ? copyFolder(copy, from, to)
            : S_ISREG(entry.st_mode)            ? copyFile(copy, from, to)
            : S_ISLNK(entry.st_mode)            ? copyLink(copy, from, to)
                                     : std::unexpected(u"%1 is neither file, folder nor link"_s.arg(from));
        if (!copied)
            return copied;
    }
    return syncFolder(target);
}

Outcome checkSource(const QString &source, const QString &destination)
{
    if (!source.startsWith(u'/') || !QFileInfo(source).isDir())
        return std::unexpected(u"%1 is not a folder"_s.arg(source));
    struct stat entry {};
    if (::stat(QFile::encodeName(source).constData(), &entry) != 0)
        return failure(source, errno);
    if (entry.st_uid != ::getuid() && entry.st_uid != 0)
        return std::unexpected(u"%1 belongs to somebody else"_s.arg(source));
    for (const auto program : { "bin/kestrel"_L1, "libexec/kestrel/kestrel-browser-helper"_L1 }) {
        const QFileInfo file(source + u'/' + program);
        if (!file.isFile() || !file.isExecutable())
            return std::unexpected(u"%1 does not hold Kestrel: there is no %2"_s.arg(source, program));
    }
    const QString menu = u"share/applications/%1.desktop"_s.arg(AppIdentifier);
    if (!QFileInfo(source + u'/' + menu).isFile())
        return std::unexpected(u"%1 does not hold all of Kestrel: there is no %2"_s.arg(source, menu));
    const auto holds = [](const QString &one, const QString &other) {
        return (other + u'/').startsWith(one + u'/');
    };
    if (holds(source, destination) || holds(destination, source))
        return std::unexpected(u"%1 cannot be copied into itself"_s.arg(source));
    return {};
}

Outcome checkDestination(const QString &destination)
{
    const QFileInfo present(destination);
    if (!present.exists() || present.isSymLink())
        return {};
    const bool isKestrel = QFileInfo::exists(destination + u"/bin/kestrel"_s);
    const bool isEmpty = present.isDir()
        && QDir(destination).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    if (!isKestrel && !isEmpty)
        return std::unexpected(u"%1 holds something else than Kestrel"_s.arg(destination));
    return {};
}

void removeAny(const QString &path)
{
    if (QFileInfo(path).isDir() && !QFileInfo(path).isSymLink())
        QDir(path).removeRecursively();
    else
        QFile::remove(path);
}

/// Puts `fresh` where `destination` is; what was there has the name `fresh` afterwards.
Outcome swap(const QString &fresh, const QString &destination)
{
    const QByteArray from = QFile::encodeName(fresh);
    const QByteArray to = QFile::encodeName(destination);
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_EXCHANGE) == 0)
        return {};
    if (errno == ENOENT) // nothing there yet
        return ::rename(from.constData(), to.constData()) == 0 ? Outcome() : failure(destination, errno);
    if (errno != EINVAL && errno != ENOSYS)
        return failure(destination, errno);
    // a file system that cannot exchange: between the two renames there is no copy under its name
    const QByteArray aside = from + ".old";
    if (::rename(to.constData(), aside.constData()) != 0)
        return failure(destination, errno);
    if (::rename(from.constData(), to.constData()) == 0)
        return ::rename(aside.constData(), from.constData()) == 0 ? Outcome() : failure(fresh, errno);
    const int error = errno;
    ::rename(aside.constData(), to.constData());
    return failure(destination, error);
}

} // namespace

Outcome installBundle(const QString &source, const InstallPlaces &places, std::chrono::milliseconds patience)
{
    const QString from = QFileInfo(source).canonicalFilePath();
    const QString to = QDir::cleanPath(places.destination);
    if (auto checked = checkSource(from.isEmpty() ? source : from, to); !checked)
        return checked;
    if (auto checked = checkDestination(to); !checked)
        return checked;
    const QDir parent = QFileInfo(to).dir();
    if (auto made = makePrivateFolder(parent.path()); !made)
        return made;
    const QString prefix = u".%1-copy-"_s.arg(QFileInfo(to).fileName());
    // one that was killed in the middle left its copy behind
    for (const QString &name : parent.entryList({ prefix + u'*' }, QDir::AllEntries | QDir::Hidden))
        removeAny(parent.filePath(name));

    const QString fresh = parent.filePath(prefix + QUuid::createUuid().toString(QUuid::Id128));
    const auto cleanUp = qScopeGuard([&fresh] { removeAny(fresh); });
    Copy copy { from, patience, {} };
    copy.elapsed.start();
    if (const auto copied = copyFolder(copy, from, fresh); !copied)
        return std::unexpected(u"Kestrel could not be copied. %1"_s.arg(copied.error()));
    auto integration = DesktopIntegration::read(fresh, places);
    if (!integration)
        return std::unexpected(integration.error());
    if (const auto written = integration->write(); !written)
        return std::unexpected(u"Kestrel could not be put into the menu. %1"_s.arg(written.error()));
    // last, because it cannot be half done
    if (const auto swapped = swap(fresh, to); !swapped) {
        integration->undo();
        return std::unexpected(u"Kestrel could not be copied. %1"_s.arg(swapped.error()));
    }
    return syncFolder(parent.path());
}

} // namespace kestrel
