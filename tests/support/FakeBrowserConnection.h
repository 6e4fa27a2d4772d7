#pragma once
#include "platform/BrowserConnection.h"

namespace kestrel {

/// Answers at once with what is set, and counts.
class FakeBrowserConnection final : public BrowserConnection
{
public:
    [[nodiscard]] QCoro::Task<BrowserConnectionState> state() override
    {
        ++asked;
        co_return BrowserConnectionState(current); // QCoro moves from what is returned
    }
    [[nodiscard]] QCoro::Task<std::expected<QString, QString>> install() override
    {
        ++installed;
        co_return std::expected<QString, QString>(answer);
    }

    BrowserConnectionState current;
    std::expected<QString, QString> answer = QString();
    int asked = 0;
    int installed = 0;
};

} // namespace kestrel
