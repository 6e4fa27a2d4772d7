#pragma once
#include "base/Awaited.h"
#include <QDBusConnection>
#include <QStringList>
#include <expected>
#include <sys/types.h>

namespace kestrel {

/// A program that outlives us.
struct StartedProcess
{
    pid_t pid = 0;
    Awaited<int> ended; ///< its exit code, -1 when a signal ended it
};

/// Starts a program with its arguments in a session of its own and, where systemd answers on `bus`, in a
/// scope of its own: bus daemons and systemd end everything in a service's control group together with the
/// service. Its standard streams go nowhere. The error is a description.
[[nodiscard]] QCoro::Task<std::expected<StartedProcess, QString>> startProcess(QDBusConnection bus,
                                                                               QStringList command);

} // namespace kestrel
