#pragma once
#include "helper/BrowserRoute.h"
#include "platform/HelperChannel.h"
#include <QPointer>

namespace kestrel {

class RelayDirectory;

/// The first Meet tab over all running browsers, and what is done there. A browser that does not answer
/// within a second does not hold up the others; a script that does not within three is given up. Outlived by
/// the directory. Main thread only.
class MeetTabs final : public QObject
{
    Q_OBJECT
public:
    explicit MeetTabs(RelayDirectory &directory);

    [[nodiscard]] QCoro::Task<HelperScriptReply> run(QString marker, QString source, bool activate);
    [[nodiscard]] QCoro::Task<HelperReply> close(QString marker);

private:
    struct Found
    {
        QPointer<BrowserRoute> route;
        QString tab;
    };

    /// The error says which browser could not tell whether it has one.
    [[nodiscard]] QCoro::Task<std::expected<std::optional<Found>, QString>> find(QString marker);

    RelayDirectory &m_directory;
    SharedAnswers<BrowserRoute::FoundTab> m_searches;
    SharedAnswers<BrowserRoute::RunAnswer> m_polls;
};

} // namespace kestrel
