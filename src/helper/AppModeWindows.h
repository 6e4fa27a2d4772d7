#pragma once
#include "helper/StartedProcess.h"
#include <QDBusConnection>
#include <QPointer>
#include <QSize>
#include <QUrl>
#include <chrono>
#include <expected>

namespace kestrel {

struct ChromiumBrowser;
class DevToolsRoute;
class ExtensionRoute;
class RelayDirectory;

/// Opens windows without tabs or address bar. Outlived by the directory. Main thread only.
class AppModeWindows final : public QObject
{
    Q_OBJECT
public:
    struct Place
    {
        QString preferencesFile; ///< read anew at each call
        QString ownProfile; ///< the folder of the browser profile that is Kestrel's own
        QString relayProgram;
        /// With a window of that profile: a first start of a browser on a busy machine.
        std::chrono::milliseconds startPatience = std::chrono::seconds(20);
    };

    AppModeWindows(RelayDirectory &directory, QDBusConnection bus, Place place);

    /// `chromePath` is the .desktop file of a browser that is known and installed, `address` an https one,
    /// the size is in device-independent pixels. The error is a text.
    [[nodiscard]] QCoro::Task<std::expected<void, QString>> open(QString chromePath, QString address,
                                                                 QSize size);

private:
    using Opened = std::expected<void, QString>;
    struct Browser
    {
        const ChromiumBrowser *kind = nullptr;
        QStringList command; ///< that starts it
    };

    [[nodiscard]] static std::expected<Browser, QString> browserAt(const QString &chromePath);
    [[nodiscard]] static QString endedText(const Browser &browser, int exitCode);
    [[nodiscard]] bool prefersOwnProfile() const;
    [[nodiscard]] QCoro::Task<QPointer<ExtensionRoute>> extensionOf(Browser browser);
    [[nodiscard]] QCoro::Task<QPointer<DevToolsRoute>> ownRoute();
    [[nodiscard]] QCoro::Task<Opened> openInEveryday(Browser browser, QStringList arguments);
    [[nodiscard]] QCoro::Task<Opened> openInOwn(Browser browser, QStringList arguments, QSize size);
    [[nodiscard]] QCoro::Task<Opened> openInOwnAlone(Browser browser, QStringList arguments, QSize size);
    /// The route once it is there; none when the relay ends first or nothing comes for a long time.
    [[nodiscard]] QCoro::Task<QPointer<DevToolsRoute>> awaitOwnRoute(StartedProcess relay);

    RelayDirectory &m_directory;
    QDBusConnection m_bus;
    Place m_place;
    std::optional<Awaited<bool>> m_openingInOwn; ///< one at a time: the first starts the browser
};

} // namespace kestrel
