#pragma once
#include "platform/HelperChannel.h"

namespace kestrel {

/// Where the program that drives browsers is not installed.
class NullHelperChannel final : public HelperChannel
{
public:
    [[nodiscard]] QCoro::Task<std::expected<HelperReply, QString>>
    openInChromeAppMode(QString /*chromePath*/, QString /*url*/, qint32 /*windowWidth*/,
                        qint32 /*windowHeight*/) override
    {
        co_return std::unexpected(QStringLiteral("The browser helper is not installed"));
    }
};

} // namespace kestrel
