#include "base/Log.h"
#include "command/CommandLine.h"
#include "command/DoctorVerb.h"
#include "command/HandOver.h"
#include "command/InstancePlace.h"
#include "command/StatusFollower.h"
#include "platform/linux/DBusSessionInstance.h"
#include "platform/linux/XdgLoginItem.h"
#include <QCoreApplication>
#include <QFile>
#include <cerrno>
#include <cstdio>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace kestrel;

namespace {

int complain(int exitCode, const QString &message)
{
    return printResult(failure(exitCode, u"kestrel: "_s + message));
}

/// Kestrel itself takes over this process; returns only when it cannot.
int becomeKestrel(char **argv)
{
    const QString program = companionProgram("kestrel-app"_L1);
    ::execv(QFile::encodeName(program).constData(), argv);
    return complain(ExitCode::Failed, u"%1: %2"_s.arg(program, qt_error_string(errno)));
}

} // namespace

int main(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const auto line = CommandLine::parse(arguments);
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
    if (!line->isForRunningKestrel())
        return becomeKestrel(argv);

    const QCoreApplication application(argc, argv);
    installLog(QtWarningMsg);
    const auto place = InstancePlace::resolve(line->dataFolder, line->googleBase);
    if (!place)
        return complain(ExitCode::Usage, place.error());
    DBusSessionInstance instance(place->busName);
    if (line->follow) {
        const StatusFollower follower(instance, *line);
        return QCoreApplication::exec();
    }
    if (line->verb == "doctor"_L1) {
        const XdgLoginItem loginItem(place->autostartFolder, companionProgram("kestrel"_L1));
        return printWhenDone(doctorVerb(instance, place->busName, loginItem, *line));
    }
    return printWhenDone(handedOver(instance, line->forHandOver()));
}
