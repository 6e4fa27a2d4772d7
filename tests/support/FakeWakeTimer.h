#pragma once
#include "platform/WakeTimer.h"
#include <optional>

namespace kestrel {

/// Fires when the test says so, whatever it was armed for.
class FakeWakeTimer final : public WakeTimer
{
    Q_OBJECT
public:
    void arm(Instant due) override
    {
        if (!isBroken)
            armed = due;
        ++arms;
    }
    void cancel() override { armed.reset(); }
    [[nodiscard]] std::optional<Instant> armedFor() const override { return armed; }
    [[nodiscard]] QCoro::Task<bool> hearsOfSleep() override { co_return true; }

    /// Nothing happens when it is not armed.
    void fire()
    {
        if (!armed)
            return;
        armed.reset();
        Q_EMIT fired();
    }
    /// The clock was set, or the machine woke up; what is armed stays so.
    void jump() { Q_EMIT clockJumped(); }

    std::optional<Instant> armed;
    int arms = 0;
    bool isBroken = false; ///< the system takes no timer
};

} // namespace kestrel
