#pragma once
#include "helper/BrowserRoute.h"
#include <QFileSystemWatcher>
#include <QPointer>
#include <QSet>
#include <map>
#include <memory>

namespace kestrel {

class DevToolsRoute;
class ExtensionRoute;

/// The relays of all running browsers and the routes through them, oldest first. Connections are kept while
/// the directory lives; who left his socket behind is cleared away, who does not keep to the protocol is left
/// alone until his socket goes. Main thread only.
class RelayDirectory final : public QObject
{
    Q_OBJECT
public:
    /// The folder is made when it is missing. One that is not ours alone (0700) counts as empty.
    explicit RelayDirectory(QString folder);
    ~RelayDirectory() override;

    template<typename Route>
    using Routes = QList<QPointer<Route>>;

    /// All, after a look at the folder; who is connected for less than a second is waited for until he has
    /// said who he is.
    [[nodiscard]] QCoro::Task<Routes<BrowserRoute>> routes();

Q_SIGNALS:
    /// A relay has said who it is.
    void routeAdded();

private:
    struct Relay
    {
        std::unique_ptr<RelayConnection> connection;
        std::unique_ptr<BrowserRoute> route; ///< none before it has said who it is
    };

    void look();
    void connectTo(const QString &name);
    void introduce(const QString &name);
    void forget(const QString &name, bool isUnfit);

    QString m_folder;
    QFileSystemWatcher m_watcher;
    std::map<QString, Relay> m_relays; ///< by their sockets' names
    QSet<QString> m_unfit;
    bool m_hasComplained = false;
};

} // namespace kestrel
