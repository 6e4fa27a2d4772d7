#include "command/HandOver.h"
#include "base/StartTask.h"
#include "command/CommandLine.h"
#include <QCoreApplication>
#include <cstdio>

namespace kestrel {

namespace {

QCoro::Task<void> printAndQuit(QCoro::Task<VerbResult> verb, int &exitCode)
{
    exitCode = printResult(co_await std::move(verb));
    // in a turn of the loop, which may not run yet
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [] { QCoreApplication::quit(); }, Qt::QueuedConnection);
}

} // namespace

VerbResult failure(int exitCode, const QString &error)
{
    return { exitCode, {}, error.endsWith(u'\n') ? error : error + u'\n' };
}

QCoro::Task<VerbResult> handedOver(SessionInstance &instance, QStringList arguments)
{
    const auto result = co_await instance.handOver(std::move(arguments));
    if (!result)
        co_return failure(ExitCode::NotRunning, result.error());
    co_return *result;
}

int printResult(const VerbResult &result)
{
    std::fputs(result.output.toUtf8().constData(), stdout);
    std::fputs(result.errors.toUtf8().constData(), stderr);
    return result.exitCode;
}

int printWhenDone(QCoro::Task<VerbResult> verb)
{
    int exitCode = ExitCode::Success;
    startTask("verb", printAndQuit(std::move(verb), exitCode));
    QCoreApplication::exec();
    return exitCode;
}

} // namespace kestrel
