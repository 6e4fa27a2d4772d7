#pragma once
#include "platform/LoginItem.h"

namespace kestrel {

/// Where Kestrel cannot start with the session.
class NullLoginItem final : public LoginItem
{
public:
    [[nodiscard]] std::expected<void, QString> setEnabled(bool enabled) override
    {
        if (enabled)
            return std::unexpected(QStringLiteral("starting with the session is not available here"));
        return {};
    }
    [[nodiscard]] LoginItemState state() const override { return LoginItemState::Off; }
};

} // namespace kestrel
