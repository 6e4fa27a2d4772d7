#pragma once
#include "base/Instant.h"

namespace kestrel {

/// Where "now" comes from. Rules never read the system's clock themselves, so that tests can set the time.
class Clock
{
public:
    Clock() = default;
    Clock(const Clock &) = delete;
    Clock &operator=(const Clock &) = delete;
    virtual ~Clock() = default;

    [[nodiscard]] virtual Instant now() const = 0;
};

class SystemClock final : public Clock
{
public:
    [[nodiscard]] Instant now() const override;
};

/// Stands at one instant until its owner moves it.
class FixedClock final : public Clock
{
public:
    explicit FixedClock(Instant instant)
        : m_now(instant)
    {
    }

    [[nodiscard]] Instant now() const override { return m_now; }
    void setNow(Instant instant) { m_now = instant; }

private:
    Instant m_now;
};

} // namespace kestrel
