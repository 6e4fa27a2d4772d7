#include "base/AppIdentifier.h"
#include "base/Log.h"
#include "base/OnThread.h"
#include "helper/BrowserHelper.h"
#include "platform/linux/HomeInstallPlaces.h"
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <csignal>
#include <malloc.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace kestrel;

namespace {

QString socketFolder()
{
    QString named = qEnvironmentVariable("KESTREL_BROWSER_SOCKETS");
    if (!named.isEmpty())
        return named;
    // not QStandardPaths, which complains where the session has none and takes another folder
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR", u"/run/user/%1"_s.arg(::getuid()));
    return runtime + u"/kestrel/browsers"_s;
}

HelperOptions readOptions(const QCoreApplication &application)
{
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    const QString store = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QCommandLineOption instance(u"instance"_s, u"Bus name of the Kestrel that is answered."_s,
                                      u"NAME"_s, AppIdentifier);
    const QCommandLineOption preferences(u"preferences"_s, u"Its preference file."_s, u"FILE"_s,
                                         config + u"/kestrel/kestrel.ini"_s);
    const QCommandLineOption sockets(u"sockets"_s, u"Folder of the browser relays' sockets."_s, u"DIR"_s,
                                     socketFolder());
    const QCommandLineOption profile(u"profile"_s, u"Browser profile of Kestrel's own."_s, u"DIR"_s,
                                     store + u"/kestrel/browser-profile"_s);
    const QCommandLineOption relay(u"relay"_s, u"The relay program."_s, u"FILE"_s,
                                   QCoreApplication::applicationDirPath() + u"/kestrel-browser-relay"_s);
    const QCommandLineOption home(u"install-home"_s, u"Kestrel is installed below it, not for the person."_s,
                                  u"DIR"_s);
    const QCommandLineOption startWith(u"start-with"_s, u"A further argument of the installed Kestrel."_s,
                                       u"ARGUMENT"_s);
    const QCommandLineOption patience(u"patience"_s, u"A browser may take so long to start."_s, u"SECONDS"_s,
                                      u"20"_s);
    const QCommandLineOption idle(u"idle"_s, u"Ends after so long without a call."_s, u"SECONDS"_s, u"30"_s);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Drives browsers for Kestrel, which starts it on demand."_s);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({ instance, preferences, sockets, profile, relay, home, startWith, patience, idle });
    parser.process(application);

    const auto path = [&parser](const QCommandLineOption &option) {
        return QDir::cleanPath(QFileInfo(parser.value(option)).absoluteFilePath());
    };
    HelperOptions options;
    options.instance = parser.value(instance);
    options.socketFolder = path(sockets);
    const auto duration = [&parser](const QCommandLineOption &option) {
        return std::chrono::milliseconds(static_cast<qint64>(parser.value(option).toDouble() * 1000));
    };
    options.windows = { path(preferences), path(profile), path(relay), duration(patience) };
    options.install = homeInstallPlaces(parser.isSet(home) ? path(home) : QString());
    options.startArguments = parser.values(startWith);
    options.idle = duration(idle);
    return options;
}

int run(int argc, char **argv)
{
    // browsers are no services, and not every reader of our pipes lives long
    ::unsetenv("DBUS_STARTER_ADDRESS");
    ::unsetenv("DBUS_STARTER_BUS_TYPE");
    ::signal(SIGPIPE, SIG_IGN);
    // what a long script took goes back to the system at once
    ::mallopt(M_MMAP_THRESHOLD, 64 * 1024);
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"kestrel-browser-helper"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(KESTREL_VERSION));
    HelperOptions options = readOptions(application);
    // what we start outlives the medium that we may have been started from
    QDir::setCurrent(QDir::homePath());
    installLog();
    // a relay that we start is to listen where we look
    qputenv("KESTREL_BROWSER_SOCKETS", QFile::encodeName(options.socketFolder));

    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        qCCritical(lcApp) << "there is no session bus";
        return 1;
    }
    BrowserHelper helper(std::move(options), bus);
    return helper.claimName() ? QCoreApplication::exec() : 0;
}

} // namespace

int main(int argc, char **argv)
{
    return leaveMain(run(argc, argv));
}
