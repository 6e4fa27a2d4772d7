#pragma once
#include "platform/StatusItemHost.h"
#include <optional>

namespace kestrel {

/// A panel that remembers what it was given. The signals are emitted by the test.
class FakeStatusItemHost final : public StatusItemHost
{
    Q_OBJECT
public:
    void show(const StatusItemState &newState) override
    {
        state = newState;
        ++shows;
    }
    [[nodiscard]] StatusItemCondition condition() const override { return current; }

    /// The last one; nothing before the first show.
    std::optional<StatusItemState> state;
    int shows = 0;
    StatusItemCondition current { StatusItemCondition::Host::Panel, QStringLiteral("mate-panel"),
                                  CountdownPlace::Label };
};

} // namespace kestrel
