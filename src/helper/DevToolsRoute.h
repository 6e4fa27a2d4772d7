#pragma once
#include "helper/BrowserRoute.h"
#include "helper/DevToolsAnswers.h"
#include <QHash>
#include <QStringList>

namespace kestrel {

/// Through the DevTools protocol in a profile of Kestrel's own. Sessions and script worlds are kept while the
/// route lives, since each new world would cost the page memory until it is left.
class DevToolsRoute final : public BrowserRoute
{
    Q_OBJECT
public:
    explicit DevToolsRoute(RelayConnection &connection);
    ~DevToolsRoute() override;

    [[nodiscard]] QCoro::Task<FoundTab> find(QString marker) override;
    [[nodiscard]] QCoro::Task<RunAnswer> run(QString tab, QString marker, QString source,
                                             bool activate) override;
    [[nodiscard]] QCoro::Task<CloseAnswer> close(QString tab, QString marker) override;

    /// All tabs, whatever they show.
    [[nodiscard]] QCoro::Task<std::expected<QStringList, QString>> tabs();
    /// Gives the tab's window exactly that size; the error also says when it has another all the same.
    [[nodiscard]] QCoro::Task<std::expected<void, QString>> resizeWindow(QString tab, QSize size);

private:
    template<typename T>
    using Result = DevToolsResult<T>;
    struct Session
    {
        QString id;
        int world = 0; ///< 0: none yet
    };

    /// `session` is empty for what the browser itself answers.
    [[nodiscard]] QCoro::Task<Result<QJsonObject>> command(QString method, QJsonObject parameters,
                                                           QString session = {});
    [[nodiscard]] QCoro::Task<Result<QList<DevToolsPage>>> pages();
    [[nodiscard]] QCoro::Task<Result<QString>> attach(QString tab);
    [[nodiscard]] QCoro::Task<Result<Session>> sessionOf(QString tab, bool needsWorld);
    [[nodiscard]] QCoro::Task<Result<QJsonObject>> evaluate(QString tab, QString expression);
    [[nodiscard]] QCoro::Task<Result<QJsonObject>> raise(QString tab);
    void heard(const QJsonObject &message);

    QHash<QString, Session> m_sessions; ///< by tab
    SharedAnswers<Result<QString>> m_attaching; ///< by tab
};

} // namespace kestrel
