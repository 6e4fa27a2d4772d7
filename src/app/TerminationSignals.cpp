#include "app/TerminationSignals.h"
#include <QCoreApplication>
#include <QSocketNotifier>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace kestrel {

namespace {

int s_pipe[2] = { -1, -1 };

// Only what is safe inside a signal: the event loop does the rest. (A blocked mask with a signalfd would be
// inherited by every browser that we start.)
void wakeEventLoop(int)
{
    const char byte = 0;
    [[maybe_unused]] const auto written = write(s_pipe[1], &byte, 1);
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent)
    : QObject(parent)
{
    if (pipe2(s_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto *notifier = new QSocketNotifier(s_pipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, QCoreApplication::instance(), &QCoreApplication::quit);
    struct sigaction action {};
    action.sa_handler = wakeEventLoop;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND); // a second one ends the process at once
    for (const int signal : { SIGTERM, SIGINT, SIGHUP })
        sigaction(signal, &action, nullptr);
}

} // namespace kestrel
