#pragma once
#include <QCoro/QCoroTask>
#include <QString>
#include <expected>
#include <optional>

namespace kestrel {

/// What the helper answered. Done with an error is a failure; neither done nor an error: there was nothing to
/// act on.
struct HelperReply
{
    bool ok = false;
    std::optional<QString> error;
};

/// The way to the program that drives browsers. One connection a call.
class HelperChannel
{
public:
    HelperChannel() = default;
    HelperChannel(const HelperChannel &) = delete;
    HelperChannel &operator=(const HelperChannel &) = delete;
    virtual ~HelperChannel() = default;

    /// The error describes why the helper could not be reached.
    [[nodiscard]] virtual QCoro::Task<std::expected<HelperReply, QString>>
    openInChromeAppMode(QString chromePath, QString url, qint32 windowWidth, qint32 windowHeight) = 0;
};

} // namespace kestrel
