#include "platform/linux/HomeInstallPlaces.h"
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

QStringList passingPlaces()
{
    QStringList places { u"/media/"_s, u"/run/media/"_s, u"/mnt/"_s, u"/tmp/.mount_"_s };
    // an AppImage says where it is mounted; another program's may, too, and then we are not below
    const QString image = QDir::cleanPath(qEnvironmentVariable("APPDIR"));
    if (qEnvironmentVariableIsSet("APPIMAGE") && image.startsWith(u'/') && image != "/"_L1)
        places.append(image + u'/');
    return places;
}

} // namespace

InstallPlaces homeInstallPlaces(const QString &home)
{
    const QString base = QDir::cleanPath(home.isEmpty() ? QDir::homePath() : home);
    const QString real = QFileInfo(base).canonicalFilePath(); // as programs see their own path
    return { passingPlaces(), real.isEmpty() ? base : real, base + u"/.local/opt/kestrel"_s,
             home.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
                            : base + u"/.local/share"_s,
             base + u"/.local/bin"_s };
}

} // namespace kestrel
