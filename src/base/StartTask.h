#pragma once
#include <QCoro/QCoroTask>

namespace kestrel {

/// The one place where a task is started and not waited for. Our tasks return their failures as values;
/// should one throw all the same, that is logged under `name` and the process goes on.
void startTask(const char *name, QCoro::Task<void> task);

} // namespace kestrel
