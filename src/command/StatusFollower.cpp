#include "command/StatusFollower.h"
#include "base/StartTask.h"
#include <QCoreApplication>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// In the form that was asked for.
QByteArray lineWithoutKestrel(const CommandLine &line)
{
    if (line.waybar)
        return R"({"text":"","alt":"stopped","tooltip":"Kestrel is not running","class":["stopped"]})"
               "\n";
    return line.json ? "null\n" : "\n";
}

} // namespace

StatusFollower::StatusFollower(SessionInstance &instance, const CommandLine &line)
    : m_instance(instance)
    , m_line(line)
{
    connect(&instance, &SessionInstance::changed, this, &StatusFollower::askLater);
    connect(&instance, &SessionInstance::busLost, this, [] {
        std::fputs("kestrel: The session bus is gone.\n", stderr);
        QCoreApplication::exit(ExitCode::Failed);
    });
    instance.follow();
    askLater();
}

void StatusFollower::askLater()
{
    if (m_isAsking)
        m_asksAgain = true;
    else
        startTask("follow the status", ask());
}

QCoro::Task<void> StatusFollower::ask()
{
    m_isAsking = true;
    do {
        m_asksAgain = false;
        const auto result = co_await m_instance.handOver(m_line.forHandOver());
        const bool isAnswer = result && result->exitCode == ExitCode::Success;
        print(isAnswer ? result->output.toUtf8() : lineWithoutKestrel(m_line));
    } while (m_asksAgain);
    m_isAsking = false;
}

void StatusFollower::print(const QByteArray &line)
{
    if (line == m_printed)
        return;
    m_printed = line;
    std::fputs(line.constData(), stdout);
    std::fflush(stdout);
}

} // namespace kestrel
