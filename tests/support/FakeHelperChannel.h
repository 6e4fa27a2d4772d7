#pragma once
#include "platform/HelperChannel.h"
#include <QList>

namespace kestrel {

/// Answers every call with `answer`, at once.
class FakeHelperChannel final : public HelperChannel
{
public:
    struct Call
    {
        QString chromePath;
        QString url;
        qint32 windowWidth = 0;
        qint32 windowHeight = 0;

        friend bool operator==(const Call &, const Call &) = default;
    };

    [[nodiscard]] QCoro::Task<std::expected<HelperReply, QString>>
    openInChromeAppMode(QString chromePath, QString url, qint32 windowWidth, qint32 windowHeight) override
    {
        calls.append({ chromePath, url, windowWidth, windowHeight });
        co_return answer;
    }

    /// The error is a helper that cannot be reached.
    std::expected<HelperReply, QString> answer = HelperReply { true, {} };
    QList<Call> calls;
};

} // namespace kestrel
