#include "app/Application.h"
#include "app/GoogleClientFile.h"
#include "base/Log.h"
#include <QCoreApplication>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace kestrel;

namespace {

int complain(int exitCode, const QString &message)
{
    std::fprintf(stderr, "kestrel: %s\n", message.toUtf8().constData());
    return exitCode;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"kestrel"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(KESTREL_VERSION));

    const auto line = CommandLine::parse(QCoreApplication::arguments());
    if (!line)
        return complain(ExitCode::Usage, line.error());
    if (line->help) {
        std::fputs(helpPage(line->verb).toUtf8().constData(), stdout);
        return ExitCode::Success;
    }
    if (line->version) {
        std::puts("kestrel " KESTREL_VERSION);
        return ExitCode::Success;
    }
    installLog(line->verb.isEmpty() ? QtInfoMsg : QtWarningMsg);
    if (line->verb == "meetings"_L1)
        return printResult(meetingsOfFile(*line));

    auto place = InstancePlace::resolve(line->dataFolder, line->googleBase);
    if (!place)
        return complain(ExitCode::Usage, place.error());
    auto client = googleClient(place->clientFile);
    if (!client)
        return complain(ExitCode::Failed, client.error());
    if (place->isSampleGoogle)
        client = GoogleClient { u"kestrel-sample"_s, u"kestrel-sample"_s };

    Application kestrel(*line, *std::move(place), *std::move(client));
    return line->verb.isEmpty() ? kestrel.run() : kestrel.runVerb();
}
