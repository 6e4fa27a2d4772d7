#include "platform/linux/PortalShortcuts.h"
#include "base/Log.h"
#include "platform/Modifier.h"
#include "platform/linux/KeyPositions.h"
#include "platform/linux/PortalRequest.h"
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QSet>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

/// One shortcut as the portal writes it: (sa{sv}).
struct PortalShortcut
{
    QString name;
    QVariantMap properties;
};
using PortalShortcutList = QList<PortalShortcut>;

static QDBusArgument &operator<<(QDBusArgument &argument, const PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.name << shortcut.properties;
    argument.endStructure();
    return argument;
}

static const QDBusArgument &operator>>(const QDBusArgument &argument, PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.name >> shortcut.properties;
    argument.endStructure();
    return argument;
}

} // namespace kestrel

Q_DECLARE_METATYPE(kestrel::PortalShortcut)
Q_DECLARE_METATYPE(kestrel::PortalShortcutList)

namespace kestrel {

namespace {

constexpr QLatin1StringView interfaceName { "GlobalShortcuts" };
constexpr QLatin1StringView fullInterface { "org.freedesktop.portal.GlobalShortcuts" };
constexpr QLatin1StringView sessionInterface { "org.freedesktop.portal.Session" };

/// "CTRL+ALT+m", as the desktops' shared text of a shortcut has it (freedesktop.org, "shortcuts").
std::optional<QString> triggerOf(const ShortcutBackend::Shortcut &shortcut)
{
    const auto keysym = usKeysymName(shortcut.keyCode);
    if (!keysym)
        return {};
    QString trigger;
    if (shortcut.modifiers & Modifier::Control)
        trigger += "CTRL+"_L1;
    if (shortcut.modifiers & Modifier::Option)
        trigger += "ALT+"_L1;
    if (shortcut.modifiers & Modifier::Shift)
        trigger += "SHIFT+"_L1;
    if (shortcut.modifiers & Modifier::Command)
        trigger += "LOGO+"_L1;
    return trigger + QString::fromLatin1(*keysym);
}

PortalShortcutList listFrom(const QVariant &value)
{
    if (value.metaType() != QMetaType::fromType<QDBusArgument>())
        return {};
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != "a(sa{sv})"_L1)
        return {};
    return qdbus_cast<PortalShortcutList>(argument);
}

} // namespace

PortalShortcuts::PortalShortcuts(QDBusConnection bus, QObject *parent)
    : ShortcutBackend(parent)
    , m_bus(std::move(bus))
    , m_service(PortalRequest::service, m_bus, QDBusServiceWatcher::WatchForOwnerChange)
{
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<PortalShortcutList>();
    m_bus.connect(PortalRequest::service, PortalRequest::path, fullInterface, u"Activated"_s, this,
                  SLOT(onActivated(QDBusMessage)));
    m_bus.connect(PortalRequest::service, PortalRequest::path, fullInterface, u"ShortcutsChanged"_s, this,
                  SLOT(onShortcutsChanged(QDBusMessage)));
    connect(&m_service, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString & /*name*/, const QString &before, const QString &after) {
                onOwnerChanged(before, after);
            });
}

PortalShortcuts::~PortalShortcuts()
{
    closeSession();
}

void PortalShortcuts::bind(const QList<Shortcut> &shortcuts)
{
    if (shortcuts == m_shortcuts) {
        // binding again would ask the person again
        if (m_outcomes)
            answer(*m_outcomes);
        if (m_outcomes || m_request)
            return;
    }
    m_shortcuts = shortcuts;
    m_outcomes.reset();
    closeSession();
    if (shortcuts.isEmpty())
        answer({});
    else
        openSession();
}

void PortalShortcuts::openSession()
{
    m_request = std::make_unique<PortalRequest>(
        m_bus, interfaceName, u"CreateSession"_s, QVariantList(),
        QVariantMap { { u"session_handle_token"_s, PortalRequest::newToken() } });
    connect(m_request.get(), &PortalRequest::granted, this, &PortalShortcuts::bindSession);
    connect(m_request.get(), &PortalRequest::failed, this, &PortalShortcuts::refuse);
}

void PortalShortcuts::bindSession(const QVariantMap &results)
{
    // written down as text, though an object path in the portal's other interfaces
    const QVariant handle = results.value(u"session_handle"_s);
    m_session = handle.metaType() == QMetaType::fromType<QDBusObjectPath>()
        ? handle.value<QDBusObjectPath>().path()
        : handle.toString();
    m_bus.connect(PortalRequest::service, m_session, sessionInterface, u"Closed"_s, this,
                  SLOT(onSessionClosed()));
    PortalShortcutList list;
    for (const Shortcut &shortcut : std::as_const(m_shortcuts)) {
        QVariantMap properties { { u"description"_s, shortcut.description } };
        if (const auto trigger = triggerOf(shortcut))
            properties.insert(u"preferred_trigger"_s, *trigger);
        list.append({ shortcut.name, properties });
    }
    endRequest();
    m_request =
        std::make_unique<PortalRequest>(m_bus, interfaceName, u"BindShortcuts"_s,
                                        QVariantList { QVariant::fromValue(QDBusObjectPath(m_session)),
                                                       QVariant::fromValue(list), QString() },
                                        QVariantMap());
    connect(m_request.get(), &PortalRequest::granted, this, &PortalShortcuts::learn);
    connect(m_request.get(), &PortalRequest::failed, this, &PortalShortcuts::refuse);
}

void PortalShortcuts::learn(const QVariantMap &results)
{
    endRequest();
    answer(outcomesFrom(results.value(u"shortcuts"_s)));
}

QList<ShortcutBackend::Outcome> PortalShortcuts::outcomesFrom(const QVariant &taken) const
{
    QSet<QString> names;
    for (const PortalShortcut &shortcut : listFrom(taken))
        names.insert(shortcut.name);
    QList<Outcome> outcomes;
    for (const Shortcut &shortcut : m_shortcuts)
        outcomes.append({ shortcut.id, names.contains(shortcut.name) });
    return outcomes;
}

void PortalShortcuts::refuse(const QString &why)
{
    endRequest();
    closeSession();
    if (std::exchange(m_lastComplaint, why) != why)
        qCWarning(lcApp).noquote() << "No global shortcuts from the desktop portal:" << errorForLog(why);
    answer(outcomesFrom({}));
}

void PortalShortcuts::answer(const QList<Outcome> &outcomes)
{
    m_outcomes = outcomes;
    Q_EMIT answered(outcomes);
}

void PortalShortcuts::endRequest()
{
    if (m_request)
        m_request.release()->deleteLater(); // it may be the one that speaks just now
}

void PortalShortcuts::closeSession()
{
    m_request.reset();
    if (m_session.isEmpty())
        return;
    auto call =
        QDBusMessage::createMethodCall(PortalRequest::service, m_session, sessionInterface, u"Close"_s);
    call.setAutoStartService(false);
    m_bus.send(call);
    forgetSession();
}

void PortalShortcuts::forgetSession()
{
    if (m_session.isEmpty())
        return;
    m_bus.disconnect(PortalRequest::service, m_session, sessionInterface, u"Closed"_s, this,
                     SLOT(onSessionClosed()));
    m_session.clear();
}

void PortalShortcuts::onOwnerChanged(const QString &before, const QString &after)
{
    if (!before.isEmpty()) {
        forgetSession();
        if (std::exchange(m_request, nullptr))
            refuse(u"it ended"_s);
    }
    // one that our own question started is not asked twice
    if (!after.isEmpty() && !m_shortcuts.isEmpty() && !m_request && m_session.isEmpty())
        openSession();
}

void PortalShortcuts::onActivated(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    if (m_isSuspended || !message.signature().startsWith("os"_L1)
        || arguments[0].value<QDBusObjectPath>().path() != m_session)
        return;
    const auto shortcut = std::ranges::find(m_shortcuts, arguments[1].toString(), &Shortcut::name);
    if (shortcut != m_shortcuts.cend())
        Q_EMIT pressed(shortcut->id);
}

void PortalShortcuts::onShortcutsChanged(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    if (!m_outcomes || !message.signature().startsWith("oa(sa{sv})"_L1)
        || arguments[0].value<QDBusObjectPath>().path() != m_session)
        return;
    if (const auto outcomes = outcomesFrom(arguments[1]); outcomes != m_outcomes)
        answer(outcomes);
}

void PortalShortcuts::onSessionClosed()
{
    m_request.reset();
    forgetSession();
    answer(outcomesFrom({}));
    m_outcomes.reset(); // the same set may be bound again
}

} // namespace kestrel
