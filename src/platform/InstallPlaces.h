#pragma once
#include <QString>
#include <QStringList>

namespace kestrel {

/// Where programs stay on this platform and where they only pass by. All paths are absolute.
struct InstallPlaces
{
    QStringList passing; ///< beginnings of paths: what is there goes away with its medium or its image
    QString home; ///< what lies below it stays all the same
    QString destination; ///< the folder that Kestrel is installed to
    QString share; ///< what the desktop reads for this person: applications, icons, D-Bus services
    QString commands; ///< where this person's shells look for commands

    [[nodiscard]] bool isPassing(const QString &path) const;
};

} // namespace kestrel
