#pragma once
#include "platform/HelperChannel.h"

namespace kestrel {

/// Where the program that drives browsers is not installed.
class NullHelperChannel final : public HelperChannel
{
public:
    [[nodiscard]] Answer<HelperReply> openInChromeAppMode(QString /*chromePath*/, QString /*url*/,
                                                          qint32 /*windowWidth*/,
                                                          qint32 /*windowHeight*/) override
    {
        co_return std::unexpected(notInstalled());
    }
    [[nodiscard]] Answer<HelperReply> installAppBundle(QString /*sourcePath*/,
                                                       QString /*destinationPath*/) override
    {
        co_return std::unexpected(notInstalled());
    }
    [[nodiscard]] Answer<HelperScriptReply>
    executeJSInChromeTab(QString /*urlSubstring*/, QString /*jsSource*/, bool /*activate*/) override
    {
        co_return std::unexpected(notInstalled());
    }
    [[nodiscard]] Answer<HelperReply> closeChromeTab(QString /*urlSubstring*/) override
    {
        co_return std::unexpected(notInstalled());
    }
    [[nodiscard]] QCoro::Task<HelperCondition> condition() override { co_return HelperCondition::Missing; }

private:
    static HelperError notInstalled()
    {
        return { HelperError::Kind::Missing, QStringLiteral("The browser helper is not installed") };
    }
};

} // namespace kestrel
