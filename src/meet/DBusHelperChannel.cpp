#include "meet/DBusHelperChannel.h"
#include "base/Log.h"
#include "meet/protocol/HelperNames.h"
#include "meet/protocol/ServiceFile.h"
#include <QCoro/QCoroDBusPendingCall>
#include <QCoro/QCoroSignal>
#include <QDBusServiceWatcher>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QProcess>
#include <QSaveFile>
#include <QSet>
#include <limits>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr auto startPatience = 10s;

QDBusMessage busCall(const QString &method)
{
    return QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                          u"org.freedesktop.DBus"_s, method);
}

/// Whether the call was never delivered, so that it may be made again.
bool wasNotDelivered(const QString &error)
{
    return error == "org.freedesktop.DBus.Error.ServiceUnknown"_L1
        || error == "org.freedesktop.DBus.Error.NameHasNoOwner"_L1
        || error.startsWith("org.freedesktop.DBus.Error.Spawn."_L1);
}

/// What is there for as long as this process is. Without its display Qt ends it where it stands, and no
/// destructor of ours runs but those of static objects.
class FilesOfThisProcess
{
public:
    ~FilesOfThisProcess()
    {
        for (const QString &path : std::as_const(m_paths))
            QFile::remove(path);
    }
    static FilesOfThisProcess &all()
    {
        static FilesOfThisProcess files;
        return files;
    }
    void add(const QString &path) { m_paths.insert(path); }
    void remove(const QString &path)
    {
        if (m_paths.remove(path))
            QFile::remove(path);
    }

private:
    QSet<QString> m_paths;
};

HelperError errorOf(const QDBusMessage &reply)
{
    if (reply.errorName() == "org.freedesktop.DBus.Error.NoReply"_L1)
        return { HelperError::Kind::Unreachable, u"the browser helper ended before it answered"_s };
    static const QStringList unknown { u"org.freedesktop.DBus.Error.UnknownMethod"_s,
                                       u"org.freedesktop.DBus.Error.UnknownInterface"_s,
                                       u"org.freedesktop.DBus.Error.UnknownObject"_s,
                                       u"org.freedesktop.DBus.Error.InvalidSignature"_s,
                                       u"org.freedesktop.DBus.Error.InvalidArgs"_s };
    using Kind = HelperError::Kind;
    return { unknown.contains(reply.errorName())      ? Kind::NotOurProtocol
                 : wasNotDelivered(reply.errorName()) ? Kind::Missing
                                                      : Kind::Unreachable,
             reply.errorMessage() };
}

/// D-Bus has no absent values: none or one.
std::optional<QString> optional(const QVariant &texts)
{
    const QStringList list = texts.toStringList();
    return list.isEmpty() ? std::nullopt : std::optional(list.first());
}

std::expected<HelperReply, HelperError> plainReply(const std::expected<QVariantList, HelperError> &answer)
{
    if (!answer)
        return std::unexpected(answer.error());
    return HelperReply { answer->at(0).toBool(), optional(answer->at(1)) };
}

} // namespace

DBusHelperChannel::DBusHelperChannel(QDBusConnection bus, QString instance, Program program)
    : m_bus(std::move(bus))
    , m_instance(std::move(instance))
    , m_name(m_instance + helperNameSuffix)
    , m_program(std::move(program))
{
}

DBusHelperChannel::~DBusHelperChannel()
{
    FilesOfThisProcess::all().remove(m_serviceFile);
}

HelperChannel::Answer<HelperReply> DBusHelperChannel::openInChromeAppMode(QString chromePath, QString url,
                                                                          qint32 windowWidth,
                                                                          qint32 windowHeight)
{
    co_return plainReply(
        co_await call(u"OpenInChromeAppMode"_s, { chromePath, url, windowWidth, windowHeight }, u"bas"_s));
}

HelperChannel::Answer<HelperReply> DBusHelperChannel::installAppBundle(QString sourcePath,
                                                                       QString destinationPath)
{
    co_return plainReply(co_await call(u"InstallAppBundle"_s, { sourcePath, destinationPath }, u"bas"_s));
}

HelperChannel::Answer<HelperReply> DBusHelperChannel::closeChromeTab(QString urlSubstring)
{
    co_return plainReply(co_await call(u"CloseChromeTab"_s, { urlSubstring }, u"bas"_s));
}

HelperChannel::Answer<HelperScriptReply>
DBusHelperChannel::executeJSInChromeTab(QString urlSubstring, QString jsSource, bool activate)
{
    const auto answer =
        co_await call(u"ExecuteJSInChromeTab"_s, { urlSubstring, jsSource, activate }, u"basas"_s);
    if (!answer)
        co_return std::unexpected(answer.error());
    co_return HelperScriptReply { answer->at(0).toBool(), optional(answer->at(1)), optional(answer->at(2)) };
}

HelperChannel::Answer<QVariantList> DBusHelperChannel::call(QString method, QVariantList arguments,
                                                            QString signature)
{
    if (!m_bus.isConnected())
        co_return std::unexpected(
            HelperError { HelperError::Kind::Unreachable, u"There is no session bus"_s });
    QDBusMessage message = QDBusMessage::createMethodCall(m_name, helperPath, helperInterface, method);
    message.setArguments(arguments);
    const QPointer self(this);
    // no bound: whoever calls may have one, and should the helper end, the bus answers at once
    QDBusMessage reply = co_await m_bus.asyncCall(message, std::numeric_limits<int>::max());
    if (self && wasNotDelivered(reply.errorName())) {
        if (!QFileInfo(m_program.path).isExecutable()) {
            co_return std::unexpected(
                HelperError { HelperError::Kind::Missing,
                              u"the browser helper is missing, or may not be run: "_s + m_program.path });
        }
        co_await provide();
        if (self)
            reply = co_await m_bus.asyncCall(message, std::numeric_limits<int>::max());
    }
    if (reply.type() != QDBusMessage::ReplyMessage)
        co_return std::unexpected(errorOf(reply));
    if (reply.signature() != signature) {
        co_return std::unexpected(
            HelperError { HelperError::Kind::NotOurProtocol,
                          u"%1 was answered with \"%2\""_s.arg(method, reply.signature()) });
    }
    co_return reply.arguments();
}

QCoro::Task<HelperCondition> DBusHelperChannel::condition()
{
    const bool isThere = QFileInfo(m_program.path).isExecutable();
    const QDBusMessage owner = co_await m_bus.asyncCall(busCall(u"NameHasOwner"_s) << m_name);
    co_return owner.arguments().value(0).toBool() ? HelperCondition::Running
        : isThere                                 ? HelperCondition::OnDemand
                                                  : HelperCondition::Missing;
}

QCoro::Task<bool> DBusHelperChannel::isActivatable()
{
    const QString name = m_name;
    const QDBusMessage reply = co_await m_bus.asyncCall(busCall(u"ListActivatableNames"_s));
    co_return reply.arguments().value(0).toStringList().contains(name);
}

QCoro::Task<void> DBusHelperChannel::provide()
{
    const QPointer self(this);
    if (!m_serviceFile.isEmpty() || !co_await isActivatable()) {
        if (!self)
            co_return;
        writeServiceFile();
        co_await m_bus.asyncCall(busCall(u"ReloadConfig"_s));
        if (!self || co_await isActivatable() || !self)
            co_return;
        co_await startHelper();
    }
}

void DBusHelperChannel::writeServiceFile()
{
    // the place where buses look for the services of one session (dbus-daemon(1),
    // standard_session_servicedirs)
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QByteArray content = serviceFile(
        m_name, QStringList { m_program.path, u"--instance"_s, m_instance } + m_program.arguments);
    if (runtime.isEmpty() || content.isEmpty())
        return;
    const QString folder = runtime + u"/dbus-1/services"_s;
    const QString path = folder + u'/' + m_name + u".service"_s;
    QSaveFile file(path);
    if (!QDir().mkpath(folder) || !file.open(QIODevice::WriteOnly)) {
        qCWarning(lcApp).noquote() << "the browser helper cannot be made known to the bus:" << path;
        return;
    }
    file.write(content);
    if (!file.commit())
        return;
    m_serviceFile = path;
    FilesOfThisProcess::all().add(path);
}

QCoro::Task<void> DBusHelperChannel::startHelper()
{
    QDBusServiceWatcher watcher(m_name, m_bus, QDBusServiceWatcher::WatchForRegistration);
    QProcess program;
    program.setProgram(m_program.path);
    program.setArguments(QStringList { u"--instance"_s, m_instance } + m_program.arguments);
    if (!program.startDetached()) {
        qCWarning(lcApp).noquote() << "the browser helper cannot be started:" << m_program.path;
        co_return;
    }
    co_await qCoro(&watcher, &QDBusServiceWatcher::serviceRegistered, startPatience);
}

} // namespace kestrel
