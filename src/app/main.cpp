#include "app/Application.h"
#include "app/BrowserVerb.h"
#include "app/GoogleClientFile.h"
#include "base/AppIdentifier.h"
#include "base/Log.h"
#include "base/OnThread.h"
#include "command/HandOver.h"
#include "platform/linux/WindowSystem.h"
#include <QGuiApplication>
#include <vector>

using namespace Qt::StringLiterals;
using namespace kestrel;

namespace {

int complain(int exitCode, const QString &message)
{
    return printResult(failure(exitCode, u"kestrel: "_s + message));
}

/// Kestrel itself has windows where there is a display; verbs never do, and start the quicker for it. The
/// window system that windows go to, if any.
std::optional<QByteArray> wantedWindows(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const auto line = CommandLine::parse(arguments);
    return line && line->verb.isEmpty() ? windowSystem() : std::nullopt;
}

std::unique_ptr<QCoreApplication> makeApplication(const std::optional<QByteArray> &windows, int &argc,
                                                  char **argv)
{
    if (!windows)
        return std::make_unique<QCoreApplication>(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setDesktopFileName(AppIdentifier);
    // an argument and not QT_QPA_PLATFORM, which every browser that we start would inherit
    static QByteArray option = "-platform"_ba, name = *windows;
    static std::vector<char *> words(argv, argv + argc);
    words.insert(words.end(), { option.data(), name.data(), nullptr });
    static int count = argc + 2;
    return std::make_unique<QGuiApplication>(count, words.data());
}

int run(int argc, char **argv)
{
    const auto windows = wantedWindows(argc, argv);
    const auto application = makeApplication(windows, argc, argv);
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

    Application kestrel(*line, *std::move(place), *std::move(client), windows.has_value());
    return line->verb.isEmpty() ? kestrel.run() : kestrel.runVerb();
}

} // namespace

int main(int argc, char **argv)
{
    return leaveMain(run(argc, argv));
}
