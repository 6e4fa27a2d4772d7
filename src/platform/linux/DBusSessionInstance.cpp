#include "platform/linux/DBusSessionInstance.h"
#include "base/StartTask.h"
#include <QCoro/QCoroDBusPendingCall>
#include <QDBusConnectionInterface>
#include <QDBusPendingCall>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const auto objectPath = u"/app/kestrel/Kestrel"_s;
const auto interfaceName = u"app.kestrel.Kestrel1"_s;

} // namespace

DBusSessionInstance::DBusSessionInstance(QString busName, QObject *parent)
    : SessionInstance(parent)
    , m_busName(std::move(busName))
{
}

DBusSessionInstance::~DBusSessionInstance()
{
    if (!m_isOwner)
        return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.unregisterObject(objectPath);
    bus.unregisterService(m_busName);
}

SessionInstance::Claim DBusSessionInstance::claim(VerbHandler handler)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return Claim::Unreachable;
    // The object stands before the name is taken: whoever finds the name finds someone who answers.
    m_handler = std::move(handler);
    bus.registerObject(objectPath, this,
                       QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportScriptableSignals);
    const auto reply = bus.interface()->registerService(m_busName, QDBusConnectionInterface::DontQueueService,
                                                        QDBusConnectionInterface::DontAllowReplacement);
    m_isOwner = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
    if (m_isOwner)
        return Claim::Owned;
    bus.unregisterObject(objectPath);
    return reply.isValid() ? Claim::Taken : Claim::Unreachable;
}

QCoro::Task<std::expected<VerbResult, QString>> DBusSessionInstance::handOver(QStringList arguments)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        co_return std::unexpected(u"There is no session bus."_s);
    QDBusMessage call = QDBusMessage::createMethodCall(m_busName, objectPath, interfaceName, u"Run"_s);
    call.setAutoStartService(false);
    call << arguments;
    // A sign-in takes as long as the person does; should the instance end, the bus answers at once.
    const QDBusMessage reply = co_await bus.asyncCall(call, std::numeric_limits<int>::max());
    if (reply.errorName() == "org.freedesktop.DBus.Error.ServiceUnknown"_L1
        || reply.errorName() == "org.freedesktop.DBus.Error.NameHasNoOwner"_L1)
        co_return std::unexpected(u"Kestrel is not running. Start it with: kestrel"_s);
    if (reply.type() == QDBusMessage::ErrorMessage)
        co_return std::unexpected(reply.errorMessage());
    const QVariantList values = reply.arguments();
    if (reply.signature() != "iss"_L1)
        co_return std::unexpected(u"The running Kestrel answered in a way that this one does not know."_s);
    co_return VerbResult { values[0].toInt(), values[1].toString(), values[2].toString() };
}

void DBusSessionInstance::announceChange()
{
    // what one turn of the event loop changes is one change
    if (std::exchange(m_announces, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_announces = false;
            Q_EMIT StatusChanged();
        },
        Qt::QueuedConnection);
}

void DBusSessionInstance::follow()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.connect(m_busName, objectPath, interfaceName, u"StatusChanged"_s, this, SIGNAL(changed()));
    bus.connect({}, u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s, u"Disconnected"_s,
                this, SIGNAL(busLost()));
    auto *watcher = new QDBusServiceWatcher(m_busName, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &SessionInstance::changed);
}

int DBusSessionInstance::Run(const QStringList &arguments, QString &, QString &)
{
    if (!calledFromDBus())
        return -1;
    setDelayedReply(true);
    startTask("answer a verb", answer(arguments, connection(), message()));
    return 0;
}

QCoro::Task<void> DBusSessionInstance::answer(QStringList arguments, QDBusConnection connection,
                                              QDBusMessage message)
{
    const VerbResult result = co_await m_handler(arguments);
    connection.send(message.createReply(QVariantList { result.exitCode, result.output, result.errors }));
}

} // namespace kestrel

// apart from all others, so that the thin program gets none of them
#include "moc_DBusSessionInstance.cpp"
