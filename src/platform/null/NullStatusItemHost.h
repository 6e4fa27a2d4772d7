#pragma once
#include "platform/StatusItemHost.h"

namespace kestrel {

/// Where there is no panel at all.
class NullStatusItemHost final : public StatusItemHost
{
    Q_OBJECT
public:
    using StatusItemHost::StatusItemHost;

    void show(const StatusItemState & /*state*/) override { }
    [[nodiscard]] StatusItemCondition condition() const override { return {}; }
};

} // namespace kestrel
