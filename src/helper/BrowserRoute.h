#pragma once
#include "helper/RelayConnection.h"
#include <QCoro/QCoroTask>
#include <QObject>
#include <QSize>
#include <QString>
#include <QUrl>
#include <expected>
#include <optional>

namespace kestrel {

/// What a browser says of an error; it may say nothing.
[[nodiscard]] inline QString browserErrorText(const QJsonValue &said)
{
    const QString text = said.toString();
    return text.isEmpty() ? QStringLiteral("The browser reported an error") : text;
}

/// A way into one profile of a running browser. A tab is named by a text that only its route reads. Errors
/// are texts. Nothing here is bounded in time: a page may never answer. Lives as long as its relay's
/// connection and is destroyed from the event loop only.
class BrowserRoute : public QObject
{
    Q_OBJECT
public:
    using FoundTab = std::expected<std::optional<QString>, QString>;
    struct Ran
    {
        bool isGone = false; ///< there is no such tab any more, or it shows something else
        std::optional<QString> result;
    };
    using RunAnswer = std::expected<Ran, QString>;
    /// False: there is no such tab any more.
    using CloseAnswer = std::expected<bool, QString>;

    explicit BrowserRoute(RelayConnection &connection)
        : m_connection(connection)
    {
    }

    [[nodiscard]] const RelayGreeting &greeting() const { return *m_connection.greeting(); }

    /// False once the browser has gone, also before this has.
    [[nodiscard]] bool isOpen() const { return m_connection.isOpen(); }

    /// The first tab of the profile that shows an https page of the Meet host and whose address contains
    /// `marker`.
    [[nodiscard]] virtual QCoro::Task<FoundTab> find(QString marker) = 0;
    /// `source` is one JavaScript expression; an empty one does nothing.
    [[nodiscard]] virtual QCoro::Task<RunAnswer> run(QString tab, QString marker, QString source,
                                                     bool activate) = 0;
    /// Closes it, whatever its page would ask.
    [[nodiscard]] virtual QCoro::Task<CloseAnswer> close(QString tab, QString marker) = 0;

    /// It did not answer in time, and has not since.
    bool isSilent = false;

protected:
    RelayConnection &m_connection;
};

} // namespace kestrel
