#include "helper/BrowserHelper.h"
#include "base/Log.h"
#include "chromelauncheradaptor.h"
#include "helper/BundleInstaller.h"
#include "meet/protocol/HelperNames.h"
#include <QCoreApplication>
#include <QCoro/QCoroDBusPendingCall>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QThread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr auto installPatience = 28s; ///< Kestrel waits for 30
constexpr auto leavePatience = 15s;

/// D-Bus has no absent values.
QStringList optional(const std::optional<QString> &text)
{
    return text ? QStringList { *text } : QStringList();
}

QDBusMessage busCall(const QString &method, const QString &name)
{
    return QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                          u"org.freedesktop.DBus"_s, method)
        << name;
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
    answerLater([=, this] { return install(sourcePath, destinationPath); });
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
    const auto owner = m_bus.asyncCall(busCall(u"GetNameOwner"_s, m_options.instance));
    const auto user = m_bus.asyncCall(busCall(u"GetConnectionUnixUser"_s, caller));
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

BrowserHelper::Answer BrowserHelper::install(QString source, QString destination)
{
    if (QDir::cleanPath(destination) != m_options.installDestination) {
        co_return { false,
                    QStringList { u"Kestrel is installed to %1 only"_s.arg(m_options.installDestination) } };
    }
    const auto outcome = std::make_shared<std::expected<void, QString>>();
    // scripts go on being run meanwhile
    std::unique_ptr<QThread> thread(QThread::create(
        [outcome, source, destination] { *outcome = installBundle(source, destination, installPatience); }));
    const Awaited<bool> finished;
    connect(thread.get(), &QThread::finished, this, [finished] { finished.settle(true); });
    thread->start();
    co_await finished;
    thread->wait();
    if (!*outcome)
        co_return { false, QStringList { outcome->error() } };
    startTask("start the installed copy", startInstalled());
    co_return { true, QStringList() };
}

QCoro::Task<void> BrowserHelper::startInstalled()
{
    ++m_underWay;
    const Awaited<bool> left;
    const auto watch =
        connect(&m_instance, &QDBusServiceWatcher::serviceUnregistered, this, [left] { left.settle(true); });
    const auto hasLeft = co_await within(leavePatience, left);
    disconnect(watch);
    if (hasLeft) {
        const auto process = co_await startProcess(
            m_bus, { m_options.installDestination + u"/bin/kestrel"_s, u"--kestrel-just-installed"_s });
        if (!process)
            qCWarning(lcApp).noquote() << "the installed copy did not start:" << errorForLog(process.error());
    }
    --m_underWay;
    rest();
}

} // namespace kestrel
