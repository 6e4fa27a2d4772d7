#include "helper/BrowserHelper.h"
#include "base/Log.h"
#include "base/OnThread.h"
#include "base/StartTask.h"
#include "chromelauncheradaptor.h"
#include "helper/BundleInstaller.h"
#include "meet/protocol/HelperNames.h"
#include <QCoreApplication>
#include <QCoro/QCoroDBusPendingCall>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr auto installPatience = 25s; ///< Kestrel waits for 30, and the copy is started within

/// D-Bus has no absent values.
QStringList optional(const std::optional<QString> &text)
{
    return text ? QStringList { *text } : QStringList();
}

QVariantList refusal(const QString &error)
{
    return { false, QStringList { error } };
}

QDBusMessage busCall(const QString &method, const QVariantList &arguments = {})
{
    QDBusMessage call = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                                       u"org.freedesktop.DBus"_s, method);
    call.setArguments(arguments);
    return call;
}

} // namespace

BrowserHelper::BrowserHelper(HelperOptions options, QDBusConnection bus)
    : m_options(std::move(options))
    , m_bus(std::move(bus))
    , m_instance(m_options.instance, m_bus)
    , m_relays(m_options.socketFolder)
    , m_tabs(m_relays)
    , m_windows(m_relays, m_bus, m_options.windows)
{
    new ChromeLauncher1Adaptor(this);
    connect(&m_instance, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { m_owner.clear(); });
    // the library tells of a bus that went by a signal on a path of its own
    m_bus.connect(QString(), u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
                  u"Disconnected"_s, QCoreApplication::instance(), SLOT(quit()));
    m_idle.setSingleShot(true);
    m_idle.setInterval(m_options.idle);
    connect(&m_idle, &QTimer::timeout, this, &BrowserHelper::leave);
}

bool BrowserHelper::claimName()
{
    // the object stands before the name is taken: the bus delivers what waited for us at once
    if (!m_bus.registerObject(helperPath, this, QDBusConnection::ExportAdaptors)
        || !m_bus.registerService(m_options.instance + helperNameSuffix))
        return false;
    m_idle.start();
    return true;
}

void BrowserHelper::rest()
{
    if (m_underWay > 0)
        return;
    if (m_isLeaving)
        QCoreApplication::quit();
    else if (m_hasInstalled)
        leave(); // nobody can remove a medium that we run from
    else
        m_idle.start();
}

void BrowserHelper::leave()
{
    if (m_underWay > 0)
        return;
    // What was sent to our name is here once the bus has taken the name back, and is still answered; what
    // comes later starts another helper.
    m_isLeaving = true;
    m_bus.unregisterService(m_options.instance + helperNameSuffix);
    QTimer::singleShot(100ms, this, &BrowserHelper::rest);
}

bool BrowserHelper::OpenInChromeAppMode(const QString &chromePath, const QString &url, int windowWidth,
                                        int windowHeight, QStringList &)
{
    const QSize size(windowWidth, windowHeight);
    answerLater([=, this] { return open(chromePath, url, size); });
    return false;
}

bool BrowserHelper::InstallAppBundle(const QString &sourcePath, const QString &destinationPath, QStringList &)
{
    const QString caller = message().service();
    answerLater([=, this] { return install(caller, sourcePath, destinationPath); });
    return false;
}

bool BrowserHelper::ExecuteJSInChromeTab(const QString &urlSubstring, const QString &jsSource, bool activate,
                                         QStringList &, QStringList &)
{
    answerLater([=, this] { return run(urlSubstring, jsSource, activate); });
    return false;
}

bool BrowserHelper::CloseChromeTab(const QString &urlSubstring, QStringList &)
{
    answerLater([=, this] { return close(urlSubstring); });
    return false;
}

void BrowserHelper::answerLater(std::function<Answer()> work)
{
    setDelayedReply(true);
    startTask("answer a call", answer(message(), std::move(work)));
}

QCoro::Task<void> BrowserHelper::answer(QDBusMessage call, std::function<Answer()> work)
{
    ++m_underWay;
    m_idle.stop();
    if (co_await mayAsk(call.service()))
        m_bus.send(call.createReply(co_await work()));
    else
        m_bus.send(call.createErrorReply(QDBusError::AccessDenied,
                                         u"Only %1 is answered"_s.arg(m_options.instance)));
    --m_underWay;
    rest();
}

QCoro::Task<bool> BrowserHelper::mayAsk(QString caller)
{
    if (!m_owner.isEmpty() && caller == m_owner)
        co_return true;
    const auto owner = m_bus.asyncCall(busCall(u"GetNameOwner"_s, { m_options.instance }));
    const auto user = m_bus.asyncCall(busCall(u"GetConnectionUnixUser"_s, { caller }));
    const QDBusMessage ownerAnswer = co_await owner;
    const QDBusMessage userAnswer = co_await user;
    if (ownerAnswer.type() != QDBusMessage::ReplyMessage || userAnswer.type() != QDBusMessage::ReplyMessage
        || ownerAnswer.arguments().value(0).toString() != caller
        || userAnswer.arguments().value(0).toUInt() != ::getuid())
        co_return false;
    m_owner = caller;
    co_return true;
}

BrowserHelper::Answer BrowserHelper::open(QString chromePath, QString url, QSize size)
{
    const auto opened = co_await m_windows.open(chromePath, url, size);
    co_return { opened.has_value(), opened ? QStringList() : QStringList { opened.error() } };
}

BrowserHelper::Answer BrowserHelper::run(QString marker, QString source, bool activate)
{
    const HelperScriptReply reply = co_await m_tabs.run(marker, source, activate);
    co_return { reply.ok, optional(reply.result), optional(reply.error) };
}

BrowserHelper::Answer BrowserHelper::close(QString marker)
{
    const HelperReply reply = co_await m_tabs.close(marker);
    co_return { reply.ok, optional(reply.error) };
}

QCoro::Task<QString> BrowserHelper::programOf(QString caller)
{
    const QDBusMessage answer =
        co_await m_bus.asyncCall(busCall(u"GetConnectionUnixProcessID"_s, { caller }));
    const uint pid = answer.arguments().value(0).toUInt();
    co_return QFile::symLinkTarget(u"/proc/%1/exe"_s.arg(pid));
}

BrowserHelper::Answer BrowserHelper::install(QString caller, QString source, QString destination)
{
    const InstallPlaces &places = m_options.install;
    if (QDir::cleanPath(destination) != places.destination)
        co_return refusal(u"Kestrel is installed to %1 only"_s.arg(places.destination));
    const QString folder = QFileInfo(source).canonicalFilePath();
    if (folder.isEmpty() || !(co_await programOf(caller)).startsWith(folder + u'/'))
        co_return refusal(u"%1 is not the folder of the Kestrel that is running"_s.arg(source));

    // scripts go on being run meanwhile
    const auto outcome = co_await onThread<std::expected<void, QString>>(
        [folder, places] { return installBundle(folder, places, installPatience); });
    if (!outcome)
        co_return refusal(outcome.error());
    // not every bus watches a folder that was not there when it started
    co_await m_bus.asyncCall(busCall(u"ReloadConfig"_s));

    // It waits until whoever asked has left. By then we may have lost the very file that we run from: an
    // image goes with its program.
    const auto process = co_await startProcess(
        m_bus,
        QStringList { places.destination + u"/bin/kestrel"_s, u"--kestrel-just-installed"_s }
            + m_options.startArguments);
    if (!process)
        co_return refusal(u"Kestrel was installed, but does not start. %1"_s.arg(process.error()));
    m_hasInstalled = true;
    co_return { true, QStringList() };
}

} // namespace kestrel
