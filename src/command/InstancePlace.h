#pragma once
#include "auth/GoogleConfiguration.h"
#include "platform/InstallPlaces.h"
#include <QString>
#include <QStringList>
#include <expected>

namespace kestrel {

/// Where one Kestrel lives: its names and files, and the Google it talks to. A data folder (--data) keeps all
/// of it apart from the person's own.
struct InstancePlace
{
    QString busName;
    QString secretService; ///< the `service` attribute of its secrets
    QString preferencesFile;
    QString clientFile; ///< the user's own OAuth client
    QString secretsFile; ///< used only where the file store was asked for
    QString soundCache; ///< a folder for sounds that are not installed beside the program
    QString browserSockets; ///< the folder in which browsers are found (docs/browser-protocol.md)
    QString browserProfile; ///< the folder of a browser profile of Kestrel's own
    QString
        autostartFolder; ///< the desktop's only where Kestrel is installed; else one that nobody starts from
    InstallPlaces install; ///< where a Kestrel that does not stay where it is goes to
    QStringList startArguments; ///< with which this very Kestrel is started again
    quint16 bridgePort = 18424;
    QString dataFolder; ///< empty for the person's own Kestrel
    GoogleEndpoints endpoints;
    bool isSampleGoogle = false; ///< the endpoints are a base on loopback, not Google

    /// `dataFolder` and `googleBase` as given on the command line or in KESTREL_DATA and KESTREL_GOOGLE_BASE;
    /// empty when not given. Creates the data folder. A base is refused without a data folder that was
    /// created for one, and the other way round, so that real tokens never go to a test server. The error
    /// says what to do.
    [[nodiscard]] static std::expected<InstancePlace, QString> resolve(const QString &dataFolder,
                                                                       const QString &googleBase);
};

/// One of Kestrel's programs: they lie side by side where they were built; where they are installed,
/// `kestrel` in bin and the others in libexec/kestrel.
[[nodiscard]] QString companionProgram(QLatin1StringView name);

/// The folder that holds bin and share.
[[nodiscard]] QString installPrefix();

} // namespace kestrel
