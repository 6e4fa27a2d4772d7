#include "platform/linux/DBusServedObject.h"
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace kestrel {

DBusServedObject::DBusServedObject(QDBusConnection bus, QString path, QString interface, QString members)
    : m_bus(std::move(bus))
    , m_path(std::move(path))
    , m_interface(std::move(interface))
    , m_members(std::move(members))
{
    m_bus.registerVirtualObject(m_path, this);
}

DBusServedObject::~DBusServedObject()
{
    m_bus.unregisterObject(m_path);
}

QString DBusServedObject::introspect(const QString & /*path*/) const
{
    QString text = u"<interface name=\"%1\">\n%2"_s.arg(m_interface, m_members);
    const QVariantMap all = properties();
    for (const auto &[name, value] : all.asKeyValueRange()) {
        text += u"<property name=\"%1\" type=\"%2\" access=\"read\"/>\n"_s.arg(
            name, QLatin1StringView(QDBusMetaType::typeToSignature(value.metaType())));
    }
    return text + u"</interface>\n"_s;
}

bool DBusServedObject::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    if (message.interface() == "org.freedesktop.DBus.Introspectable"_L1
        || message.interface() == "org.freedesktop.DBus.Peer"_L1)
        return false;
    const QDBusMessage reply = answer(message);
    if (message.isReplyRequired())
        connection.send(reply);
    return true;
}

QDBusMessage DBusServedObject::answer(const QDBusMessage &message)
{
    const QString method = message.member() + u'(' + message.signature() + u')';
    const QVariantList arguments = message.arguments();
    if (message.interface() == "org.freedesktop.DBus.Properties"_L1) {
        if (method == "GetAll(s)"_L1)
            return message.createReply(properties());
        if (method == "Get(ss)"_L1) {
            const QVariant value = properties().value(arguments[1].toString());
            if (value.isValid())
                return message.createReply(QVariant::fromValue(QDBusVariant(value)));
            return message.createErrorReply(QDBusError::UnknownProperty, u"There is no such property."_s);
        }
    } else if (message.interface().isEmpty() || message.interface() == m_interface) {
        if (const auto values = call(method, arguments))
            return message.createReply(*values);
    }
    return message.createErrorReply(QDBusError::UnknownMethod, u"There is no such method."_s);
}

void DBusServedObject::announce(const QString &signal, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createSignal(m_path, m_interface, signal);
    message.setArguments(arguments);
    m_bus.send(message);
}

} // namespace kestrel
