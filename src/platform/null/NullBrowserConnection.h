#pragma once
#include "platform/BrowserConnection.h"

namespace kestrel {

/// Where no browser can be driven.
class NullBrowserConnection final : public BrowserConnection
{
public:
    [[nodiscard]] QCoro::Task<BrowserConnectionState> state() override { co_return {}; }
    [[nodiscard]] QCoro::Task<std::expected<QString, QString>> install() override
    {
        co_return std::unexpected(QStringLiteral("This build of Kestrel cannot drive browsers."));
    }
};

} // namespace kestrel
