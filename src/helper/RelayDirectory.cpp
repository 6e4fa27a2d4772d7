#include "helper/RelayDirectory.h"
#include "base/Log.h"
#include "helper/DevToolsRoute.h"
#include "helper/ExtensionRoute.h"
#include "platform/linux/PrivateFile.h"
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr qsizetype mostRelays = 64;

bool isOursAlone(const QString &folder)
{
    struct stat entry {};
    return ::lstat(QFile::encodeName(folder).constData(), &entry) == 0 && S_ISDIR(entry.st_mode)
        && entry.st_uid == ::getuid() && (entry.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

} // namespace

RelayDirectory::RelayDirectory(QString folder)
    : m_folder(std::move(folder))
{
    if (const auto made = makePrivateFolder(m_folder); !made)
        qCWarning(lcApp).noquote() << "no browser can be reached:" << errorForLog(made.error());
    m_watcher.addPath(m_folder);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &RelayDirectory::look);
    look();
}

RelayDirectory::~RelayDirectory()
{
    for (auto &[name, relay] : m_relays)
        relay.connection->disconnect(this);
}

QCoro::Task<RelayDirectory::Routes<BrowserRoute>> RelayDirectory::routes()
{
    look();
    QList<Awaited<bool>> greetings;
    for (const auto &[name, relay] : m_relays)
        greetings.append(relay.connection->greeted());
    const QPointer self(this);
    for (const auto &greeting : greetings)
        co_await greeting;
    Routes<BrowserRoute> routes;
    if (!self)
        co_return routes;
    for (const auto &[name, relay] : m_relays) {
        if (relay.route)
            routes.append(relay.route.get());
    }
    co_return routes;
}

void RelayDirectory::look()
{
    static const QRegularExpression pattern(u"^[0-9a-f]{16}-[0-9]+\\.sock$"_s);
    const bool isPrivate = isOursAlone(m_folder);
    if (!isPrivate && QFile::exists(m_folder) && !std::exchange(m_hasComplained, true))
        qCWarning(lcApp).noquote() << "not a folder of this user alone:" << m_folder;
    // QDir lists sockets as system files
    QStringList names =
        isPrivate ? QDir(m_folder).entryList(QDir::System | QDir::Files, QDir::Name) : QStringList();
    names.removeIf([](const QString &name) { return !pattern.match(name).hasMatch(); });
    m_unfit.removeIf([&](const QString &name) { return !names.contains(name); });
    for (const QString &name : std::as_const(names)) {
        if (!m_relays.contains(name) && !m_unfit.contains(name)
            && m_relays.size() < static_cast<std::size_t>(mostRelays))
            connectTo(name);
    }
}

void RelayDirectory::connectTo(const QString &name)
{
    const QByteArray path = QFile::encodeName(m_folder + u'/' + name);
    auto connection = RelayConnection::open(path);
    if (!connection) {
        if (connection.error() == ECONNREFUSED)
            ::unlink(path.constData());
        else if (connection.error() == EPERM)
            m_unfit.insert(name);
        return;
    }
    connect(connection->get(), &RelayConnection::introduced, this, [this, name] { introduce(name); });
    connect(connection->get(), &RelayConnection::closed, this,
            [this, name](bool isUnfit) { forget(name, isUnfit); });
    m_relays[name].connection = *std::move(connection);
}

void RelayDirectory::introduce(const QString &name)
{
    Relay &relay = m_relays[name];
    if (relay.connection->greeting()->route == RelayGreeting::Route::Extension)
        relay.route = std::make_unique<ExtensionRoute>(*relay.connection);
    else
        relay.route = std::make_unique<DevToolsRoute>(*relay.connection);
    Q_EMIT routeAdded();
}

void RelayDirectory::forget(const QString &name, bool isUnfit)
{
    const auto relay = m_relays.find(name);
    if (relay == m_relays.end())
        return;
    // the route refers to the connection and is deleted before it
    if (BrowserRoute *route = relay->second.route.release())
        route->deleteLater();
    relay->second.connection.release()->deleteLater();
    m_relays.erase(relay);
    if (isUnfit)
        m_unfit.insert(name);
}

} // namespace kestrel
