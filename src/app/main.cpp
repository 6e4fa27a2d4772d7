#include "app/Application.h"
#include "app/BrowserVerb.h"
#include "app/GoogleClientFile.h"
#include "base/AppIdentifier.h"
#include "base/Log.h"
#include "command/HandOver.h"
#include "platform/linux/WindowSystem.h"
#include <QGuiApplication>

using namespace Qt::StringLiterals;
using namespace kestrel;

namespace {

int complain(int exitCode, const QString &message)
{
    return printResult(failure(exitCode, u"kestrel: "_s + message));
}

/// Kestrel itself has windows where there is a display; verbs never do, and start the quicker for it.
bool wantsWindows(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const auto line = CommandLine::parse(arguments);
    if (!line || !line->verb.isEmpty())
        return false;
    const auto system = windowSystem();
    if (!system)
        return false;
    qputenv("QT_QPA_PLATFORM", *system);
    return true;
}

std::unique_ptr<QCoreApplication> makeApplication(bool hasDisplay, int &argc, char **argv)
{
    if (!hasDisplay)
        return std::make_unique<QCoreApplication>(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setDesktopFileName(AppIdentifier);
    return std::make_unique<QGuiApplication>(argc, argv);
}

} // namespace

int main(int argc, char **argv)
{
    const bool hasDisplay = wantsWindows(argc, argv);
    const auto application = makeApplication(hasDisplay, argc, argv);
    QCoreApplication::setApplicationName(u"kestrel"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(KESTREL_VERSION));

    const auto line = CommandLine::parse(QCoreApplication::arguments());
    if (!line)
        return complain(ExitCode::Usage, line.error());
    installLog(line->verb.isEmpty() ? QtInfoMsg : QtWarningMsg);
    if (line->verb == "meetings"_L1)
        return printResult(meetingsOfFile(*line));

    auto place = InstancePlace::resolve(line->dataFolder, line->googleBase);
    if (!place)
        return complain(ExitCode::Usage, place.error());
    if (line->verb == "browser"_L1)
        return printResult(browserVerb(*line, *place));
    auto client = googleClient(place->clientFile);
    if (!client)
        return complain(ExitCode::Failed, client.error());
    if (place->isSampleGoogle)
        client = GoogleClient { u"kestrel-sample"_s, u"kestrel-sample"_s };

    Application kestrel(*line, *std::move(place), *std::move(client), hasDisplay);
    return line->verb.isEmpty() ? kestrel.run() : kestrel.runVerb();
}
