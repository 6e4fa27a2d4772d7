#include "base/OnThread.h"
#include "base/Log.h"
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <thread>

namespace kestrel {

namespace {

std::atomic_int s_atWork = 0;

} // namespace

bool startThread(std::function<void()> work)
{
    ++s_atWork;
    try {
        std::thread([work = std::move(work)]() mutable {
            work();
            work = nullptr; // what it owns goes as long as it counts
            --s_atWork;
        }).detach();
        return true;
    } catch (const std::system_error &error) {
        --s_atWork;
        qCWarning(lcApp) << "No thread:" << error.what();
        return false;
    }
}

int leaveMain(int exitCode)
{
    if (s_atWork > 0) {
        std::fflush(nullptr);
        std::_Exit(exitCode);
    }
    return exitCode;
}

} // namespace kestrel
