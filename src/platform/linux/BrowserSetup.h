#pragma once
#include "platform/linux/ChromiumBrowsers.h"
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <expected>
#include <optional>

namespace kestrel {

/// Where the person's browsers and our parts for them are; absolute paths.
struct BrowserPlaces
{
    QString home; ///< the browsers' data folders lie below it,
    QString configuration; ///< those of ".config/" here
    QStringList applications; ///< folders of .desktop files
    QString extensionSource; ///< the extension as it is shipped
    QString extension; ///< its copy, which browsers load
    QString sockets; ///< of the relays
    QString relayProgram;
    bool isPassing = false; ///< this Kestrel goes away with its medium: `relayProgram` is the installed one's
};

/// What a browser knows of our relay, by its native-messaging manifest.
enum class HostManifest {
    Missing,
    Different, ///< it names another relay or extension, or is broken
    Current,
    Impossible, ///< a sandboxed browser starts no programs of ours
};

/// A running relay, as it introduces itself.
struct BrowserRelay
{
    qint64 browserProcess = 0;
    QString route; ///< "extension" or "devtools"
    QString browser; ///< its program
    QString userDataDir; ///< empty where the relay does not know it
    QString revision; ///< of the extension that runs; empty while it does not answer
    std::optional<bool> allowsScripts;
};

/// As the browser's files describe it, which it writes some seconds after a change.
struct BrowserProfile
{
    QString folder; ///< its name below the data folder
    QString name; ///< as the person knows it
    bool hasExtension = false;
    bool isEnabled = false;
    bool allowsScripts = false; ///< the switch "Allow User Scripts"
};

struct BrowserCondition
{
    QString name;
    Packaging packaging = Packaging::Native;
    QString dataFolder;
    HostManifest manifest = HostManifest::Missing;
    QList<BrowserProfile> profiles;
    QList<BrowserRelay> relays; ///< one for each of its profiles that is connected
};

struct BrowserReport
{
    QString extension; ///< its folder
    QString installedRevision; ///< empty where it was not copied yet
    QString shippedRevision;
    QList<BrowserCondition> browsers;
    QList<BrowserRelay> otherRelays; ///< of browsers with data folders of their own
};

/// How it went for one browser.
struct BrowserInstallation
{
    QString name;
    Packaging packaging = Packaging::Native;
    QString manifestFile;
    QString error; ///< empty when the manifest is there
};

/// Prepares the person's Chromium-family browsers for Kestrel's extension, and says how far they are. Works
/// on files and sockets alone, whether or not browsers run.
class BrowserSetup final
{
public:
    explicit BrowserSetup(BrowserPlaces places);

    /// Copies the extension, whole or not at all, and writes the manifest of every browser that is there;
    /// one browser's failure does not keep the others from theirs. The error is a description.
    [[nodiscard]] std::expected<QList<BrowserInstallation>, QString> install() const;

    /// Waits for running relays, two seconds at most.
    [[nodiscard]] BrowserReport status() const;

private:
    using Files = QMap<QString, QByteArray>; ///< by their names in the folder

    [[nodiscard]] QList<BrowserCondition> foundBrowsers() const;
    [[nodiscard]] std::expected<Files, QString> shippedFiles() const;
    [[nodiscard]] std::expected<void, QString> copyExtension(const Files &files) const;
    [[nodiscard]] QByteArray manifest() const;
    [[nodiscard]] HostManifest manifestOf(const BrowserCondition &browser) const;
    [[nodiscard]] QList<BrowserRelay> relays() const;

    BrowserPlaces m_places;
};

} // namespace kestrel
