#include "soak/SoakPanel.h"
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const auto watcherName = u"org.kde.StatusNotifierWatcher"_s;
const auto itemInterface = u"org.kde.StatusNotifierItem"_s;

} // namespace

SoakPanel::SoakPanel()
    : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"soak panel"_s))
{
    m_bus.registerVirtualObject(u"/StatusNotifierWatcher"_s, this);
    for (const auto &signal : { u"NewIcon"_s, u"NewToolTip"_s, u"XAyatanaNewLabel"_s })
        m_bus.connect({}, u"/StatusNotifierItem"_s, itemInterface, signal, this,
                      SLOT(readAgain(QDBusMessage)));
}

SoakPanel::~SoakPanel()
{
    QDBusConnection::disconnectFromBus(m_bus.name());
}

void SoakPanel::start()
{
    m_bus.interface()->registerService(watcherName);
}

void SoakPanel::stop()
{
    m_bus.interface()->unregisterService(watcherName);
    m_items = 0;
}

bool SoakPanel::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    if (message.member() == "RegisterStatusNotifierItem"_L1) {
        ++m_items;
        connection.send(message.createReply());
        readAgain(message);
    } else {
        connection.send(message.createReply(QVariant::fromValue(QDBusVariant(true))));
    }
    return true;
}

void SoakPanel::readAgain(const QDBusMessage &message)
{
    ask(message.service(), u"/StatusNotifierItem"_s, u"GetAll"_s, { itemInterface },
        u"org.freedesktop.DBus.Properties"_s);
    ask(message.service(), u"/MenuBar"_s, u"GetLayout"_s, { 0, -1, QStringList() },
        u"com.canonical.dbusmenu"_s);
}

void SoakPanel::ask(const QString &service, const QString &path, const QString &method,
                    const QVariantList &arguments, const QString &interface)
{
    QDBusMessage question = QDBusMessage::createMethodCall(service, path, interface, method);
    question.setArguments(arguments);
    m_bus.asyncCall(question);
}

} // namespace kestrel
