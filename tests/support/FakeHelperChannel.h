#pragma once
#include "platform/HelperChannel.h"
#include <QCoro/QCoroSignal>
#include <QList>
#include <QObject>

namespace kestrel {

/// Notes every call and answers it with the answer that is set, at once or, while `isHeld`, when release() is
/// called.
class FakeHelperChannel final : public QObject, public HelperChannel
{
    Q_OBJECT
public:
    struct Opened
    {
        QString chromePath;
        QString url;
        qint32 windowWidth = 0;
        qint32 windowHeight = 0;

        friend bool operator==(const Opened &, const Opened &) = default;
    };
    struct Executed
    {
        QString urlSubstring;
        QString jsSource;
        bool activate = false;

        friend bool operator==(const Executed &, const Executed &) = default;
    };

    [[nodiscard]] Answer<HelperReply> openInChromeAppMode(QString chromePath, QString url, qint32 windowWidth,
                                                          qint32 windowHeight) override
    {
        opened.append({ chromePath, url, windowWidth, windowHeight });
        co_await held();
        co_return answer;
    }
    [[nodiscard]] Answer<HelperReply> installAppBundle(QString sourcePath, QString destinationPath) override
    {
        installed.append({ sourcePath, destinationPath });
        co_await held();
        co_return answer;
    }
    [[nodiscard]] Answer<HelperScriptReply> executeJSInChromeTab(QString urlSubstring, QString jsSource,
                                                                 bool activate) override
    {
        executed.append({ urlSubstring, jsSource, activate });
        const auto given = scriptAnswer;
        co_await held();
        co_return given;
    }
    [[nodiscard]] Answer<HelperReply> closeChromeTab(QString urlSubstring) override
    {
        closed.append(urlSubstring);
        co_await held();
        co_return answer;
    }

    [[nodiscard]] QCoro::Task<HelperCondition> condition() override
    {
        co_return HelperCondition(current); // QCoro moves from what is returned
    }

    void release()
    {
        isHeld = false;
        Q_EMIT released();
    }

    /// The error is a helper that cannot be reached.
    std::expected<HelperReply, HelperError> answer = HelperReply { true, {} };
    /// As it is when the call comes.
    std::expected<HelperScriptReply, HelperError> scriptAnswer = HelperScriptReply { true, {}, {} };
    HelperCondition current = HelperCondition::OnDemand;
    bool isHeld = false;
    QList<Opened> opened;
    QList<std::pair<QString, QString>> installed;
    QList<Executed> executed;
    QStringList closed;

Q_SIGNALS:
    void released();

private:
    QCoro::Task<void> held()
    {
        if (isHeld)
            co_await qCoro(this, &FakeHelperChannel::released);
    }
};

} // namespace kestrel
