#pragma once
#include "platform/SessionInstance.h"
#include <QCoro/QCoroTask>
#include <QString>
#include <QStringList>

namespace kestrel {

/// A verb that failed before anybody could carry it out: `error` is for stderr.
[[nodiscard]] VerbResult failure(int exitCode, const QString &error);

/// Has the running Kestrel carry out a verb, as CommandLine::forHandOver() makes it.
[[nodiscard]] QCoro::Task<VerbResult> handedOver(SessionInstance &instance, QStringList arguments);

/// Prints to stdout and stderr; returns the exit code.
int printResult(const VerbResult &result);

/// Runs the event loop until the verb is done, and prints its result; returns the exit code.
[[nodiscard]] int printWhenDone(QCoro::Task<VerbResult> verb);

} // namespace kestrel
