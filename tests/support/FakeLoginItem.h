#pragma once
#include "platform/LoginItem.h"
#include <optional>

namespace kestrel {

/// Remembers what it was last told, also when it fails.
class FakeLoginItem final : public LoginItem
{
public:
    [[nodiscard]] std::expected<void, QString> setEnabled(bool enabled) override
    {
        isEnabled = enabled;
        if (!failure.isEmpty())
            return std::unexpected(failure);
        return {};
    }
    [[nodiscard]] LoginItemState state() const override
    {
        return isEnabled.value_or(false) ? LoginItemState::On : LoginItemState::Off;
    }

    std::optional<bool> isEnabled;
    QString failure;
};

} // namespace kestrel
