#include "platform/linux/PortalRequest.h"
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr QLatin1StringView requestInterface { "org.freedesktop.portal.Request" };

} // namespace

PortalRequest::PortalRequest(QDBusConnection bus, const QString &interfaceName, const QString &method,
                             const QVariantList &arguments, QVariantMap options, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
{
    // The answer may overtake the reply to the call, so its place is known beforehand
    const QString token = newToken();
    QString sender = m_bus.baseService().mid(1);
    sender.replace(u'.', u'_');
    listenTo(path + u"/request/"_s + sender + u'/' + token);

    options.insert(u"handle_token"_s, token);
    auto call =
        QDBusMessage::createMethodCall(service, path, u"org.freedesktop.portal."_s + interfaceName, method);
    call.setArguments(arguments + QVariantList { options });
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, &PortalRequest::taken);
}

PortalRequest::~PortalRequest()
{
    if (m_handle.isEmpty())
        return;
    auto call = QDBusMessage::createMethodCall(service, m_handle, requestInterface, u"Close"_s);
    call.setAutoStartService(false); // a portal that ended has taken its dialog along
    m_bus.send(call);
    stopListening();
}

QString PortalRequest::newToken()
{
    static int last = 0;
    return u"kestrel%1"_s.arg(++last);
}

void PortalRequest::listenTo(const QString &handle)
{
    m_handle = handle;
    m_bus.connect(service, m_handle, requestInterface, u"Response"_s, this,
                  SLOT(onResponse(uint, QVariantMap)));
}

void PortalRequest::stopListening()
{
    m_bus.disconnect(service, m_handle, requestInterface, u"Response"_s, this,
                     SLOT(onResponse(uint, QVariantMap)));
    m_handle.clear();
}

void PortalRequest::taken(QDBusPendingCallWatcher *call)
{
    call->deleteLater();
    const QDBusPendingReply<QDBusObjectPath> reply = *call;
    if (m_handle.isEmpty())
        return; // answered already
    if (reply.isError()) {
        stopListening();
        Q_EMIT failed(reply.error().message());
    } else if (reply.value().path() != m_handle) { // portals before 0.9 name it themselves
        stopListening();
        listenTo(reply.value().path());
    }
}

void PortalRequest::onResponse(uint response, const QVariantMap &results)
{
    stopListening();
    if (response == 0)
        Q_EMIT granted(results);
    else
        Q_EMIT failed(response == 1 ? u"the person said no"_s : u"the portal gave up"_s);
}

} // namespace kestrel
