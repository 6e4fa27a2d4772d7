#pragma once
#include "command/CommandLine.h"
#include "platform/SessionInstance.h"
#include <QCoro/QCoroTask>

namespace kestrel {

class LoginItem;

/// Has the running Kestrel examine itself. That there is none, or that whoever has its `busName` does not
/// answer, is a report too.
[[nodiscard]] QCoro::Task<VerbResult> doctorVerb(SessionInstance &instance, QString busName,
                                                 const LoginItem &loginItem, CommandLine line);

} // namespace kestrel
