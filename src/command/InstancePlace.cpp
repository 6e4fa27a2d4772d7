#include "command/InstancePlace.h"
#include "base/AppIdentifier.h"
#include "platform/linux/HomeInstallPlaces.h"
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// Lies in a data folder that was created for a sample Google, and in no other.
constexpr auto markerName = "made-for-a-sample-google"_L1;

/// Two folders never share a bus name, and one folder has the same name through every path that leads to it.
QString suffixOf(const QString &folder)
{
    const QByteArray path = QFileInfo(folder).canonicalFilePath().toUtf8();
    return u".data_"_s
        + QString::fromLatin1(QCryptographicHash::hash(path, QCryptographicHash::Sha256).toHex().left(12));
}

/// With its .desktop file below the same prefix, and there to stay: neither a build tree nor a stick may
/// start with the session.
bool isInstalled(const InstallPlaces &places)
{
    const QString prefix = installPrefix();
    return !places.isPassing(prefix + u'/')
        && QFileInfo::exists(prefix + u"/share/applications/"_s + AppIdentifier + u".desktop"_s);
}

/// Browsers inherit the variable and find the same folder.
QString socketsFolder(const QString &suffix)
{
    if (const QString named = qEnvironmentVariable("KESTREL_BROWSER_SOCKETS"); !named.isEmpty())
        return named;
    // not QStandardPaths, which takes a folder that no browser looks into where the session has none
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR", u"/run/user/%1"_s.arg(::getuid()));
    return runtime + u"/kestrel"_s + suffix + u"/browsers"_s;
}

std::expected<void, QString> prepareFolder(const QString &folder, bool forSampleGoogle)
{
    QDir directory(folder);
    const bool isNew =
        !directory.exists() || directory.isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    const bool isMarked = directory.exists(markerName);
    if (forSampleGoogle && !isNew && !isMarked) {
        return std::unexpected(
            u"The data folder %1 was not created for a test server. Give --google-base together with "
            "a new --data folder."_s.arg(folder));
    }
    if (!forSampleGoogle && isMarked) {
        return std::unexpected(
            u"The data folder %1 was created for a test server. Give its --google-base, or another folder."_s
                .arg(folder));
    }
    if (!directory.mkpath(u"."_s))
        return std::unexpected(u"The data folder %1 cannot be created."_s.arg(folder));
    if (!isNew)
        return {};
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (forSampleGoogle) {
        QFile marker(directory.filePath(markerName));
        if (!marker.open(QIODevice::WriteOnly))
            return std::unexpected(
                u"The data folder %1 cannot be written: %2"_s.arg(folder, marker.errorString()));
    }
    return {};
}

} // namespace

std::expected<InstancePlace, QString> InstancePlace::resolve(const QString &dataFolder,
                                                             const QString &googleBase)
{
    InstancePlace place;
    place.busName = AppIdentifier;
    place.secretService = AppIdentifier;
    place.endpoints = GoogleEndpoints::publicHosts();
    if (!googleBase.isEmpty()) {
        auto endpoints = GoogleEndpoints::at(QUrl(googleBase, QUrl::StrictMode));
        if (!endpoints)
            return std::unexpected(endpoints.error());
        if (dataFolder.isEmpty())
            return std::unexpected(u"--google-base needs a data folder of its own: give --data as well."_s);
        place.endpoints = *endpoints;
        place.isSampleGoogle = true;
    }

    if (dataFolder.isEmpty()) {
        const QString config =
            QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/kestrel/"_s;
        place.preferencesFile = config + u"kestrel.ini"_s;
        place.clientFile = config + u"google-client.json"_s;
        place.secretsFile = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
            + u"/kestrel/secrets.json"_s;
        place.install = homeInstallPlaces();
        place.autostartFolder = isInstalled(place.install)
            ? QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/autostart"_s
            : config + u"autostart"_s;
        place.browserSockets = socketsFolder({});
        place.browserProfile = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
            + u"/kestrel/browser-profile"_s;
        place.soundCache =
            QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/kestrel/sounds"_s;
        return place;
    }

    const QString folder = QDir(dataFolder).absolutePath();
    if (const auto prepared = prepareFolder(folder, place.isSampleGoogle); !prepared)
        return std::unexpected(prepared.error());
    const QString suffix = suffixOf(folder);
    place.busName += suffix;
    place.secretService += suffix;
    place.autostartFolder = folder + u"/autostart"_s;
    place.install = homeInstallPlaces(folder + u"/home"_s);
    place.install.passing += qEnvironmentVariable("KESTREL_PASSING").split(u':', Qt::SkipEmptyParts);
    place.startArguments = { u"--data"_s, folder };
    if (place.isSampleGoogle)
        place.startArguments += { u"--google-base"_s, googleBase };
    place.browserSockets = socketsFolder(suffix);
    place.browserProfile = folder + u"/browser-profile"_s;
    // the person's own Kestrel may be listening on the usual one
    if (const int port = qEnvironmentVariableIntValue("KESTREL_BRIDGE_PORT"); port > 0 && port <= 65535)
        place.bridgePort = static_cast<quint16>(port);
    place.dataFolder = folder;
    place.preferencesFile = folder + u"/kestrel.ini"_s;
    place.clientFile = folder + u"/google-client.json"_s;
    place.secretsFile = folder + u"/secrets.json"_s;
    place.soundCache = folder + u"/sounds"_s;
    return place;
}

QString companionProgram(QLatin1StringView name)
{
    // asked before there is an application object, too
    const QString here = QFileInfo(QFile::symLinkTarget(u"/proc/self/exe"_s)).path() + u'/';
    for (const auto folder : { ""_L1, "../libexec/kestrel/"_L1, "../../bin/"_L1 }) {
        if (QFileInfo(here + folder + name).isExecutable())
            return QDir::cleanPath(here + folder + name);
    }
    return here + name;
}

QString installPrefix()
{
    return QDir::cleanPath(QFileInfo(companionProgram("kestrel"_L1)).path() + u"/.."_s);
}

} // namespace kestrel
