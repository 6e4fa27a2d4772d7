#pragma once
#include "base/Instant.h"
#include <QCoro/QCoroTask>
#include <QObject>
#include <optional>

namespace kestrel {

/// One absolute wall-clock timer that neither sleep nor a set clock makes late. Main thread only.
class WakeTimer : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// Fires once at `due` by the wall clock, at once when that is past. Takes the place of what was armed
    /// before.
    virtual void arm(Instant due) = 0;
    virtual void cancel() = 0;
    /// What it is really armed for, as the system has it; nothing while it is not.
    [[nodiscard]] virtual std::optional<Instant> armedFor() const = 0;
    /// Whether somebody announces that the machine woke up, besides the clock itself.
    [[nodiscard]] virtual QCoro::Task<bool> hearsOfSleep() = 0;

Q_SIGNALS:
    void fired();
    /// The clock was set or the machine woke up: whoever plans by the clock plans again. The timer stays
    /// armed.
    void clockJumped();
};

} // namespace kestrel
