#include "platform/linux/DBusSessionInstance.h"
#include "base/StartTask.h"
#include <QCoro/QCoroDBusPendingCall>
#include <QCoro/QCoroSignal>
#include <QDBusConnectionInterface>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QFile>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const auto objectPath = u"/app/kestrel/Kestrel"_s;
const auto interfaceName = u"app.kestrel.Kestrel1"_s;
const auto notRunningMessage = u"Kestrel is not running. Start it with: kestrel"_s;

bool meansNobody(const QString &error)
{
    return error == "org.freedesktop.DBus.Error.ServiceUnknown"_L1
        || error == "org.freedesktop.DBus.Error.NameHasNoOwner"_L1;
}

/// An error that no Kestrel answers a verb with.
bool meansStranger(const QString &error)
{
    static const QStringList errors {
        u"org.freedesktop.DBus.Error.UnknownMethod"_s,    u"org.freedesktop.DBus.Error.UnknownObject"_s,
        u"org.freedesktop.DBus.Error.UnknownInterface"_s, u"org.freedesktop.DBus.Error.InvalidArgs"_s,
        u"org.freedesktop.DBus.Error.AccessDenied"_s,     u"org.freedesktop.DBus.Error.NotSupported"_s,
    };
    return errors.contains(error);
}

/// Under which name the person finds it among the running programs.
QString programText(uint pid)
{
    QFile name(u"/proc/%1/comm"_s.arg(pid));
    if (!name.open(QIODevice::ReadOnly))
        return u"process %1"_s.arg(pid);
    return u"\"%1\" (process %2)"_s.arg(QString::fromUtf8(name.readAll()).trimmed()).arg(pid);
}

} // namespace

DBusSessionInstance::DBusSessionInstance(QString busName, HandOverPatience patience, QObject *parent)
    : SessionInstance(parent)
    , m_busName(std::move(busName))
    , m_patience(patience)
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
    if (m_isOwner) {
        bus.connect({}, u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s, u"Disconnected"_s,
                    this, SIGNAL(busLost()));
        return Claim::Owned;
    }
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
    // A sign-in takes as long as the person does; should the instance end, the bus answers at once. Only that
    // the other end is a Kestrel at all must show sooner.
    QDBusPendingCallWatcher verb(bus.asyncCall(call, std::numeric_limits<int>::max()));
    const auto finished = &QDBusPendingCallWatcher::finished;
    if (!verb.isFinished())
        co_await qCoro(&verb, finished, m_patience.beforeAsking);
    if (!verb.isFinished()) {
        const Peer other = co_await peer();
        if (other != Peer::Kestrel && !verb.isFinished())
            co_return std::unexpected(co_await complaintAbout(other));
    }
    if (!verb.isFinished())
        co_await qCoro(&verb, finished);

    const QDBusMessage reply = verb.reply();
    if (meansNobody(reply.errorName()))
        co_return std::unexpected(notRunningMessage);
    if (meansStranger(reply.errorName()))
        co_return std::unexpected(co_await complaintAbout(Peer::Stranger));
    if (reply.errorName() == "org.freedesktop.DBus.Error.NoReply"_L1)
        co_return std::unexpected(u"Kestrel ended before it answered."_s);
    if (reply.type() == QDBusMessage::ErrorMessage)
        co_return std::unexpected(reply.errorMessage());
    const QVariantList values = reply.arguments();
    if (reply.signature() != "iss"_L1)
        co_return std::unexpected(co_await complaintAbout(Peer::Stranger));
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

QCoro::Task<DBusSessionInstance::Peer> DBusSessionInstance::peer()
{
    const QDBusMessage question = QDBusMessage::createMethodCall(
        m_busName, objectPath, u"org.freedesktop.DBus.Introspectable"_s, u"Introspect"_s);
    const QDBusMessage answer = co_await QDBusConnection::sessionBus().asyncCall(
        question, static_cast<int>(m_patience.forAnAnswer.count()));
    if (answer.type() == QDBusMessage::ErrorMessage) {
        co_return answer.errorName() == "org.freedesktop.DBus.Error.NoReply"_L1 ? Peer::Silent
                                                                                : Peer::Stranger;
    }
    co_return answer.arguments().value(0).toString().contains(interfaceName) ? Peer::Kestrel : Peer::Stranger;
}

QCoro::Task<QString> DBusSessionInstance::complaintAbout(Peer peer)
{
    const QDBusMessage question =
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                       u"org.freedesktop.DBus"_s, u"GetConnectionUnixProcessID"_s)
        << m_busName;
    const QString busName = m_busName;
    const QDBusMessage answer = co_await QDBusConnection::sessionBus().asyncCall(question);
    if (meansNobody(answer.errorName()))
        co_return notRunningMessage; // it has just ended
    const QString program = answer.type() == QDBusMessage::ReplyMessage
        ? programText(answer.arguments().value(0).toUInt())
        : u"a program"_s;
    if (peer == Peer::Silent) {
        co_return u"%1, which has the name %2 on the session bus, does not answer. End it, then "
                  "start Kestrel again."_s.arg(program, busName);
    }
    co_return u"The name %2 on the session bus belongs to %1, which is not this Kestrel. End it, then start "
              "Kestrel again."_s.arg(program, busName);
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
#include "moc_DBusSessionInstance.cpp" // NOLINT(bugprone-suspicious-include)
