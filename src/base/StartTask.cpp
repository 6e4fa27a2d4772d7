#include "base/StartTask.h"
#include "base/Log.h"
#include <exception>
#include <utility>

namespace kestrel {

namespace {

QCoro::Task<void> watch(const char *name, QCoro::Task<void> task)
{
    try {
        co_await std::move(task);
    } catch (const std::exception &exception) {
        qCCritical(lcApp).noquote() << "Task" << name
                                    << "threw:" << errorForLog(QString::fromUtf8(exception.what()));
    }
}

} // namespace

void startTask(const char *name, QCoro::Task<void> task)
{
    watch(name, std::move(task));
}

} // namespace kestrel
