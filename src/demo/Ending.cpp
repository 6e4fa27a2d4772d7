#include "demo/Ending.h"
#include <QCoreApplication>
#include <QSocketNotifier>
#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace kestrel::demo {

void endOnSignals()
{
    sigset_t signalSet;
    sigemptyset(&signalSet);
    sigaddset(&signalSet, SIGTERM);
    sigaddset(&signalSet, SIGINT);
    sigprocmask(SIG_BLOCK, &signalSet, nullptr);
    auto *notifier = new QSocketNotifier(signalfd(-1, &signalSet, SFD_CLOEXEC), QSocketNotifier::Read,
                                         QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, qApp, &QCoreApplication::quit);
}

void endWithStdin()
{
    auto *notifier = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [] {
        char ignored[256];
        if (read(STDIN_FILENO, ignored, sizeof ignored) <= 0)
            QCoreApplication::quit();
    });
}

} // namespace kestrel::demo
