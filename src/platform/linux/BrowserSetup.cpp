#include "platform/linux/BrowserSetup.h"
#include "platform/linux/DesktopApplicationLookup.h"
#include "platform/linux/PrivateFile.h"
#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr auto hostName = "app.kestrel.kestrel"_L1;
/// Follows from the "key" in the extension's manifest.
constexpr auto extensionID = "gcoehfepgndjcehifahbpicecdkiomml"_L1;
constexpr auto revisionFile = "revision"_L1;

std::unexpected<QString> failure(const QString &path, const QString &error)
{
    return std::unexpected(path + u": "_s + error);
}

QJsonObject jsonFile(const QString &path)
{
    const auto content = readFile(path);
    return content ? QJsonDocument::fromJson(*content).object() : QJsonObject();
}

QString manifestFile(const BrowserCondition &browser)
{
    return browser.dataFolder + u"/NativeMessagingHosts/"_s + hostName + u".json"_s;
}

/// Every file below a folder, by its path there.
std::expected<QMap<QString, QByteArray>, QString> filesBelow(const QString &folder)
{
    QMap<QString, QByteArray> files;
    QDirIterator entries(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        auto content = readFile(path);
        if (!content)
            return failure(path, content.error());
        files.insert(QDir(folder).relativeFilePath(path), *std::move(content));
    }
    return files;
}

/// Puts the folder `fresh` in the place of `target`, which is never missing in between where the file system
/// can swap two names.
std::expected<void, QString> swapFolders(const QString &fresh, const QString &target)
{
    const QByteArray from = QFile::encodeName(fresh);
    const QByteArray to = QFile::encodeName(target);
    if (::rename(from.constData(), to.constData()) == 0)
        return {};
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_EXCHANGE) == 0)
        return {};
    if (errno != EINVAL && errno != ENOSYS)
        return failure(target, qt_error_string(errno));
    const QByteArray aside = to + ".old";
    QDir(QFile::decodeName(aside)).removeRecursively();
    if (::rename(to.constData(), aside.constData()) != 0)
        return failure(target, qt_error_string(errno));
    if (::rename(from.constData(), to.constData()) != 0) {
        const int error = errno;
        ::rename(aside.constData(), to.constData());
        return failure(target, qt_error_string(error));
    }
    QDir(QFile::decodeName(aside)).removeRecursively();
    return {};
}

QList<BrowserProfile> profilesOf(const QString &dataFolder)
{
    QList<BrowserProfile> profiles;
    const QJsonObject names =
        jsonFile(dataFolder + u"/Local State"_s)["profile"_L1]["info_cache"_L1].toObject();
    for (auto entry = names.begin(); entry != names.end(); ++entry) {
        BrowserProfile profile { entry.key(), entry.value()["name"_L1].toString(entry.key()) };
        // which of the two holds extensions depends on how the browser was built
        for (const auto file : { "Preferences"_L1, "Secure Preferences"_L1 }) {
            const QJsonObject settings = jsonFile(dataFolder + u'/' + profile.folder + u'/' + file);
            const QJsonValue ours = settings["extensions"_L1]["settings"_L1][extensionID];
            if (!ours["path"_L1].isString())
                continue;
            const QJsonValue reasons = ours["disable_reasons"_L1];
            profile.hasExtension = true;
            profile.isEnabled = reasons.toArray().isEmpty() && reasons.toInt(0) == 0;
            profile.allowsScripts = ours["user_scripts_enabled"_L1].toBool();
        }
        profiles.append(profile);
    }
    return profiles;
}

bool isOurUser(const QLocalSocket &socket)
{
    ucred peer {};
    socklen_t size = sizeof peer;
    return ::getsockopt(static_cast<int>(socket.socketDescriptor()), SOL_SOCKET, SO_PEERCRED, &peer, &size)
        == 0
        && peer.uid == ::geteuid();
}

/// The first frame that arrives before the deadline; empty when none does.
QJsonObject firstFrame(QLocalSocket &socket, const QDeadlineTimer &deadline)
{
    constexpr quint32 longest = 1'000'000;
    QByteArray bytes;
    for (;;) {
        bytes += socket.read(longest);
        quint32 length = 0;
        if (bytes.size() >= qsizetype(sizeof length)) {
            std::memcpy(&length, bytes.constData(), sizeof length);
            if (length > longest)
                return {};
            if (bytes.size() - qsizetype(sizeof length) >= qsizetype(length))
                return QJsonDocument::fromJson(bytes.mid(sizeof length, length)).object();
        }
        if (deadline.hasExpired() || !socket.waitForReadyRead(int(deadline.remainingTime())))
            return {};
    }
}

} // namespace

BrowserSetup::BrowserSetup(BrowserPlaces places)
    : m_places(std::move(places))
{
}

QList<BrowserCondition> BrowserSetup::foundBrowsers() const
{
    const DesktopApplicationLookup lookup(m_places.applications);
    QList<BrowserCondition> found;
    for (const ChromiumBrowser &row : chromiumBrowsers()) {
        if (!lookup.locationOf(row))
            continue;
        constexpr auto configuration = ".config/"_L1;
        const QString folder = row.dataFolder.startsWith(configuration)
            ? m_places.configuration + u'/' + row.dataFolder.sliced(configuration.size())
            : m_places.home + u'/' + row.dataFolder;
        // some browsers have two names
        if (std::ranges::any_of(found, [&](const auto &other) { return other.dataFolder == folder; }))
            continue;
        found.append({ row.name, row.packaging, folder, HostManifest::Missing, {}, {} });
    }
    return found;
}

std::expected<BrowserSetup::Files, QString> BrowserSetup::shippedFiles() const
{
    auto files = filesBelow(m_places.extensionSource);
    if (!files)
        return files;
    QJsonObject manifest = QJsonDocument::fromJson(files->value(u"manifest.json"_s)).object();
    if (manifest.isEmpty())
        return failure(m_places.extensionSource, u"there is no extension"_s);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (auto file = files->cbegin(); file != files->cend(); ++file) {
        hash.addData(file.key().toUtf8() + '\0' + QByteArray::number(file->size()) + '\0');
        hash.addData(*file);
    }
    // every other content is another revision, so that a running extension notices
    const QString revision = u"%1 (%2)"_s.arg(manifest["version"_L1].toString(),
                                              QString::fromLatin1(hash.result().toHex().left(8)));
    manifest["version_name"_L1] = revision;
    files->insert(u"manifest.json"_s, QJsonDocument(manifest).toJson());
    files->insert(revisionFile, revision.toUtf8() + '\n');
    return files;
}

std::expected<void, QString> BrowserSetup::copyExtension(const Files &files) const
{
    if (filesBelow(m_places.extension) == files)
        return {};
    if (auto made = makePrivateFolder(QFileInfo(m_places.extension).path()); !made)
        return made;
    const auto lock = lockFile(m_places.extension, 10s);
    if (!lock)
        return failure(m_places.extension, lock.error());
    const QString fresh = m_places.extension + u".new"_s;
    QDir freshFolder(fresh);
    freshFolder.removeRecursively();
    const auto copied = [&]() -> std::expected<void, QString> {
        for (auto file = files.cbegin(); file != files.cend(); ++file) {
            const QString path = freshFolder.filePath(file.key());
            if (auto made = makePrivateFolder(QFileInfo(path).path()); !made)
                return made;
            if (const auto written = replaceFile(path, *file); !written)
                return failure(path, written.error());
        }
        return swapFolders(fresh, m_places.extension);
    }();
    // what was in its place before, or what could not be finished
    freshFolder.removeRecursively();
    return copied;
}

QByteArray BrowserSetup::manifest() const
{
    return QJsonDocument(QJsonObject { { u"name"_s, hostName },
                                       { u"description"_s, u"Kestrel, the meeting assistant"_s },
                                       { u"path"_s, m_places.relayProgram },
                                       { u"type"_s, u"stdio"_s },
                                       { u"allowed_origins"_s,
                                         QJsonArray { u"chrome-extension://%1/"_s.arg(extensionID) } } })
        .toJson();
}

HostManifest BrowserSetup::manifestOf(const BrowserCondition &browser) const
{
    if (browser.packaging != Packaging::Native)
        return HostManifest::Impossible;
    const auto content = readFile(manifestFile(browser));
    if (content && content->isEmpty())
        return HostManifest::Missing;
    const bool isOurs =
        content && QJsonDocument::fromJson(*content).object() == QJsonDocument::fromJson(manifest()).object();
    return isOurs ? HostManifest::Current : HostManifest::Different;
}

std::expected<QList<BrowserInstallation>, QString> BrowserSetup::install() const
{
    const bool hasRelay = QFileInfo(m_places.relayProgram).isExecutable();
    if (!hasRelay && m_places.isPassing)
        return std::unexpected(
            u"This Kestrel goes away with the medium that it runs from, and browsers would "
            "not find it any more. Install it on this computer first."_s);
    if (!hasRelay)
        return failure(m_places.relayProgram, u"the program is missing, so browsers could not start it"_s);
    const auto files = shippedFiles();
    if (!files)
        return std::unexpected(files.error());
    if (const auto copied = copyExtension(*files); !copied)
        return std::unexpected(copied.error());

    QList<BrowserInstallation> all;
    for (const BrowserCondition &browser : foundBrowsers()) {
        BrowserInstallation installation { browser.name, browser.packaging, manifestFile(browser), {} };
        const HostManifest present = manifestOf(browser);
        if (present == HostManifest::Missing || present == HostManifest::Different) {
            auto written = makePrivateFolder(QFileInfo(installation.manifestFile).path());
            if (written)
                written = replaceFile(installation.manifestFile, manifest());
            if (!written)
                installation.error = written.error();
        }
        all.append(installation);
    }
    return all;
}

QList<BrowserRelay> BrowserSetup::relays() const
{
    const QFileInfo folder(m_places.sockets);
    constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther
        | QFile::WriteOther | QFile::ExeOther;
    if (!folder.isDir() || folder.ownerId() != ::geteuid() || (folder.permissions() & others) != 0)
        return {};

    // all are asked before the first is waited for
    std::vector<std::unique_ptr<QLocalSocket>> sockets;
    const QDir directory(m_places.sockets);
    for (const QString &name :
         directory.entryList({ u"*.sock"_s }, QDir::System | QDir::Hidden | QDir::Files, QDir::Name)) {
        auto socket = std::make_unique<QLocalSocket>();
        socket->connectToServer(directory.filePath(name));
        if (socket->state() == QLocalSocket::ConnectedState && isOurUser(*socket))
            sockets.push_back(std::move(socket));
    }
    const QDeadlineTimer deadline(2s);
    QList<BrowserRelay> relays;
    for (const auto &socket : sockets) {
        const QJsonObject greeting = firstFrame(*socket, deadline);
        if (greeting["relay"_L1].toInt() != 1)
            continue;
        BrowserRelay relay { greeting["browserPid"_L1].toInteger(), greeting["route"_L1].toString(),
                             greeting["browser"_L1].toString(),     greeting["userDataDir"_L1].toString(),
                             greeting["revision"_L1].toString(),    {} };
        if (const QJsonValue allowed = greeting["userScripts"_L1]; allowed.isBool())
            relay.allowsScripts = allowed.toBool();
        relays.append(relay);
    }
    return relays;
}

BrowserReport BrowserSetup::status() const
{
    BrowserReport report { m_places.extension, {}, {}, foundBrowsers(), relays() };
    const auto installed = readFile(m_places.extension + u'/' + revisionFile);
    report.installedRevision = QString::fromUtf8(installed.value_or(QByteArray())).trimmed();
    if (const auto shipped = shippedFiles())
        report.shippedRevision = QString::fromUtf8(shipped->value(revisionFile)).trimmed();
    for (BrowserCondition &browser : report.browsers) {
        browser.manifest = manifestOf(browser);
        browser.profiles = profilesOf(browser.dataFolder);
        for (const BrowserRelay &relay : std::as_const(report.otherRelays)) {
            if (relay.route == "extension"_L1 && QDir::cleanPath(relay.userDataDir) == browser.dataFolder)
                browser.relays.append(relay);
        }
        report.otherRelays.removeIf([&](const BrowserRelay &relay) {
            return relay.route == "extension"_L1 && QDir::cleanPath(relay.userDataDir) == browser.dataFolder;
        });
    }
    return report;
}

} // namespace kestrel
