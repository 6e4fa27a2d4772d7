#pragma once
#include "platform/WakeTimer.h"
#include <QSocketNotifier>
#include <optional>

namespace kestrel {

/// A timerfd on the wall clock itself: the kernel fires it on time through sleep, NTP's slewing and a set
/// clock, and nothing wakes up before. It is always armed, for a far future when nobody waits, since only an
/// armed one tells of a set clock. logind's word that the machine is awake counts as a jump too. Main thread
/// only.
class AbsoluteWakeTimer final : public WakeTimer
{
    Q_OBJECT
public:
    explicit AbsoluteWakeTimer(QObject *parent = nullptr);
    ~AbsoluteWakeTimer() override;
    AbsoluteWakeTimer(const AbsoluteWakeTimer &) = delete;
    AbsoluteWakeTimer &operator=(const AbsoluteWakeTimer &) = delete;

    void arm(Instant due) override;
    void cancel() override;
    [[nodiscard]] std::optional<Instant> armedFor() const override;
    [[nodiscard]] QCoro::Task<bool> hearsOfSleep() override;

private:
    void set();
    void read();
    void followSleep();
    Q_SLOT void onPrepareForSleep(bool goesToSleep);

    int m_descriptor;
    QSocketNotifier m_notifier;
    std::optional<Instant> m_due;
};

} // namespace kestrel
