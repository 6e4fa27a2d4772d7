#include "helper/AppModeWindows.h"
#include "base/Log.h"
#include "helper/DevToolsRoute.h"
#include "helper/ExtensionRoute.h"
#include "helper/RelayDirectory.h"
#include "platform/linux/ChromiumBrowsers.h"
#include "platform/linux/DesktopApplicationLookup.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/IniText.h"
#include "platform/linux/PrivateFile.h"
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTimer>
#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr auto openPatience = 10s;
constexpr auto exitPatience = 1s; ///< a browser that cannot run says so at once
constexpr auto look = 50ms;
constexpr int largest = 16384;
constexpr qsizetype longestAddress = 4096;

QCoro::Task<void> pause(std::chrono::milliseconds time)
{
    co_await within(time, Awaited<bool>());
}

/// Of the person's profiles, wherever the session keeps configuration.
QString dataFolder(const ChromiumBrowser &browser)
{
    constexpr auto config = ".config/"_L1;
    const QString folder = browser.dataFolder;
    if (folder.startsWith(config) && browser.packaging == Packaging::Native) {
        return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u'/'
            + folder.mid(config.size());
    }
    return QDir::homePath() + u'/' + folder;
}

bool isSamePath(const QString &one, const QString &other)
{
    const QString canonical = QFileInfo(one).canonicalFilePath();
    return !canonical.isEmpty() ? canonical == QFileInfo(other).canonicalFilePath()
                                : QDir::cleanPath(one) == QDir::cleanPath(other);
}

QString valueOfOption(const QStringList &command, const QString &option)
{
    const auto found =
        std::ranges::find_if(command, [&](const QString &word) { return word.startsWith(option + u'='); });
    return found == command.end() ? QString() : found->mid(option.size() + 1);
}

} // namespace

AppModeWindows::AppModeWindows(RelayDirectory &directory, QDBusConnection bus, Place place)
    : m_directory(directory)
    , m_bus(std::move(bus))
    , m_place(std::move(place))
{
}

QCoro::Task<AppModeWindows::Opened> AppModeWindows::open(QString chromePath, QString address, QSize size)
{
    const QUrl url(address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != "https"_L1 || url.host().isEmpty()
        || address.size() > longestAddress)
        co_return std::unexpected(u"Only https addresses are opened"_s);
    if (size.width() < 1 || size.height() < 1 || size.width() > largest || size.height() > largest)
        co_return std::unexpected(
            u"A window cannot be %1 by %2 large"_s.arg(size.width()).arg(size.height()));
    const auto browser = browserAt(chromePath);
    if (!browser)
        co_return std::unexpected(browser.error());

    if (const auto route = co_await extensionOf(*browser)) {
        const auto opened = co_await within(openPatience, started("open a window", route->open(url, size)));
        if (!opened)
            co_return std::unexpected(u"The browser does not answer"_s);
        if (*opened)
            co_return {};
        qCWarning(lcApp).noquote() << "the extension opened no window:" << errorForLog(opened->error());
    }
    const QStringList arguments { u"--app=%1"_s.arg(QString::fromLatin1(url.toEncoded())),
                                  u"--window-size=%1,%2"_s.arg(size.width()).arg(size.height()) };
    // a browser in a sandbox gets neither our descriptors nor our folder
    if (prefersOwnProfile() && browser->kind->packaging == Packaging::Native)
        co_return co_await openInOwn(*browser, arguments, size);
    co_return co_await openInEveryday(*browser, arguments);
}

QString AppModeWindows::endedText(const Browser &browser, int exitCode)
{
    return u"%1 ended at once with exit code %2"_s.arg(browser.command.value(0), QString::number(exitCode));
}

std::expected<AppModeWindows::Browser, QString> AppModeWindows::browserAt(const QString &chromePath)
{
    const DesktopApplicationLookup lookup;
    const QString name = QFileInfo(chromePath).completeBaseName();
    for (const ChromiumBrowser &kind : chromiumBrowsers()) {
        if (kind.desktopID != name || lookup.locationOf(kind.bundleIdentifier) != chromePath)
            continue;
        auto command = execArguments(desktopEntryValue(chromePath, "Exec"_L1));
        if (!command)
            return std::unexpected(u"%1: %2"_s.arg(chromePath, command.error()));
        // what flatpak puts around the addresses that it is to pass on
        command->removeIf([](const QString &word) { return word == "@@"_L1 || word == "@@u"_L1; });
        return Browser { &kind, *command };
    }
    return std::unexpected(u"Not an installed browser that Kestrel knows: %1"_s.arg(chromePath));
}

bool AppModeWindows::prefersOwnProfile() const
{
    const auto text = readFile(m_place.preferencesFile);
    return text && IniText(*text).string(u"browserProfile"_s) == u"kestrel"_s;
}

QCoro::Task<QPointer<ExtensionRoute>> AppModeWindows::extensionOf(Browser browser)
{
    const QString named = valueOfOption(browser.command, u"--user-data-dir"_s);
    const QString folder = named.isEmpty() ? dataFolder(*browser.kind) : named;
    const QString program = QStandardPaths::findExecutable(browser.command.value(0));
    for (const auto &route : co_await m_directory.routes()) {
        auto *extension = qobject_cast<ExtensionRoute *>(route.get());
        if (!extension || extension->isSilent)
            continue;
        const RelayGreeting &greeting = extension->greeting();
        const bool isIts = greeting.userDataDir.isEmpty() ? isSamePath(greeting.browser, program)
                                                          : isSamePath(greeting.userDataDir, folder);
        if (isIts)
            co_return QPointer(extension);
    }
    co_return QPointer<ExtensionRoute>();
}

QCoro::Task<QPointer<DevToolsRoute>> AppModeWindows::ownRoute()
{
    for (const auto &route : co_await m_directory.routes()) {
        auto *devTools = qobject_cast<DevToolsRoute *>(route.get());
        if (devTools && isSamePath(devTools->greeting().userDataDir, m_place.ownProfile))
            co_return QPointer(devTools);
    }
    co_return QPointer<DevToolsRoute>();
}

QCoro::Task<AppModeWindows::Opened> AppModeWindows::openInEveryday(Browser browser, QStringList arguments)
{
    const auto process = co_await startProcess(m_bus, browser.command + arguments);
    if (!process)
        co_return std::unexpected(process.error());
    const auto code = co_await within(exitPatience, process->ended);
    if (code.value_or(0) != 0)
        co_return std::unexpected(endedText(browser, *code));
    co_return {};
}

QCoro::Task<AppModeWindows::Opened> AppModeWindows::openInOwn(Browser browser, QStringList arguments,
                                                              QSize size)
{
    while (m_openingInOwn) {
        const auto before = *m_openingInOwn;
        co_await before;
    }
    const Awaited<bool> opening;
    m_openingInOwn = opening;
    // a browser that runs and takes no notice of its pipe would never be given up
    const auto opened =
        co_await within(m_place.startPatience,
                        started("open in Kestrel's own profile", openInOwnAlone(browser, arguments, size)));
    m_openingInOwn.reset();
    opening.settle(true);
    co_return opened.value_or(std::unexpected(u"The browser with Kestrel's own profile does not answer"_s));
}

QCoro::Task<AppModeWindows::Opened> AppModeWindows::openInOwnAlone(Browser browser, QStringList arguments,
                                                                   QSize size)
{
    if (const auto made = makePrivateFolder(m_place.ownProfile); !made)
        co_return std::unexpected(made.error());
    const QStringList profile { u"--user-data-dir="_s + m_place.ownProfile, u"--no-first-run"_s,
                                u"--no-default-browser-check"_s, u"--hide-crash-restore-bubble"_s };
    QPointer<DevToolsRoute> route = co_await ownRoute();
    QStringList before;
    std::optional<Awaited<int>> ended; // of a program that is to end well and at once
    if (route) {
        // the running browser makes the window: it is told so as any second start tells it
        const auto known = co_await route->tabs();
        if (!known)
            co_return std::unexpected(known.error());
        before = *known;
        const auto process = co_await startProcess(m_bus, browser.command + profile + arguments);
        if (!process)
            co_return std::unexpected(process.error());
        ended = process->ended;
    } else {
        const auto relay = co_await startProcess(
            m_bus,
            QStringList { m_place.relayProgram, u"--devtools"_s, u"--"_s } + browser.command + profile
                + QStringList { u"--remote-debugging-pipe"_s } + arguments);
        if (!relay)
            co_return std::unexpected(relay.error());
        route = co_await awaitOwnRoute(*relay);
    }
    QElapsedTimer elapsed;
    elapsed.start();
    while (route && !elapsed.hasExpired(m_place.startPatience.count())) {
        if (ended && ended->value().value_or(0) != 0)
            co_return std::unexpected(endedText(browser, *ended->value()));
        const auto now = co_await route->tabs();
        if (!now)
            co_return std::unexpected(now.error());
        const auto added =
            std::ranges::find_if(*now, [&](const QString &tab) { return !before.contains(tab); });
        if (added != now->end() && route)
            co_return co_await route->resizeWindow(*added, size);
        co_await pause(look);
    }
    co_return std::unexpected(u"The browser with Kestrel's own profile did not start"_s);
}

QCoro::Task<QPointer<DevToolsRoute>> AppModeWindows::awaitOwnRoute(StartedProcess relay)
{
    const Awaited<bool> over;
    relay.ended.then([over] { over.settle(false); });
    QTimer bound;
    QObject::connect(&bound, &QTimer::timeout, &bound, [over] { over.settle(false); });
    bound.start(m_place.startPatience);
    for (;;) {
        if (auto route = co_await ownRoute())
            co_return route;
        if (over.value())
            co_return QPointer<DevToolsRoute>();
        // whatever comes first: a relay, or the end of hope
        const Awaited<bool> next;
        const auto connection = QObject::connect(&m_directory, &RelayDirectory::routeAdded, &bound,
                                                 [next] { next.settle(true); });
        over.then([next] { next.settle(false); });
        co_await next;
        QObject::disconnect(connection);
    }
}

} // namespace kestrel
