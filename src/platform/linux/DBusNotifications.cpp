#include "platform/linux/DBusNotifications.h"
#include "base/AppIdentifier.h"
#include "base/Log.h"
#include <QCoro/QCoroDBusPendingCall>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const auto serviceName = u"org.freedesktop.Notifications"_s;
const auto servicePath = u"/org/freedesktop/Notifications"_s;

QDBusMessage callOf(const QString &method)
{
    return QDBusMessage::createMethodCall(serviceName, servicePath, serviceName, method);
}

} // namespace

DBusNotifications::DBusNotifications(QDBusConnection bus, QObject *parent)
    : Notifications(parent)
    , m_bus(std::move(bus))
    , m_service(serviceName, m_bus, QDBusServiceWatcher::WatchForUnregistration)
{
    m_bus.connect(QString(), servicePath, serviceName, u"ActionInvoked"_s, this, SLOT(chosen(uint, QString)));
    m_bus.connect(QString(), servicePath, serviceName, u"NotificationClosed"_s, this, SLOT(gone(uint)));
    connect(&m_service, &QDBusServiceWatcher::serviceUnregistered, this, &DBusNotifications::forgetAll);
}

void DBusNotifications::show(const Notice &notice)
{
    Shown &shown = m_shown[notice.key];
    shown.isUnwanted = false;
    if (shown.isAwaited)
        shown.next = notice;
    else
        send(notice);
}

void DBusNotifications::send(const Notice &notice)
{
    Shown &shown = m_shown[notice.key];
    shown.isAwaited = true;
    QStringList actions;
    for (const auto &[id, label] : notice.actions)
        actions << id << label;
    // 2 is critical, which no service takes away by itself
    const QVariantMap hints { { u"urgency"_s, QVariant::fromValue<uchar>(notice.isCritical ? 2 : 1) },
                              { u"desktop-entry"_s, QString(AppIdentifier) } };
    // the body is markup, the title is plain
    const QDBusMessage call = callOf(u"Notify"_s)
        << u"Kestrel"_s << shown.number << QString(AppIdentifier) << notice.title
        << notice.text.toHtmlEscaped() << actions << hints << (notice.isCritical ? 0 : -1);
    auto *pending = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending, key = notice.key] {
        pending->deleteLater();
        taken(key, pending->reply());
    });
}

void DBusNotifications::taken(const QString &key, const QDBusMessage &answer)
{
    Shown &shown = m_shown[key];
    shown.isAwaited = false;
    if (answer.type() == QDBusMessage::ErrorMessage) {
        const bool isUnwanted = m_shown.take(key).isUnwanted;
        if (!std::exchange(m_hasComplained, true))
            qCWarning(lcAlerts) << "no notification could be shown:" << errorForLog(answer.errorMessage());
        if (!isUnwanted)
            Q_EMIT closed(key); // nobody will ever answer it
        return;
    }
    shown.number = answer.arguments().value(0).toUInt();
    if (shown.isUnwanted)
        retract(m_shown.take(key).number);
    else if (shown.next)
        send(*std::exchange(shown.next, std::nullopt));
}

void DBusNotifications::close(const QString &key)
{
    const auto shown = m_shown.find(key);
    if (shown == m_shown.end())
        return;
    if (shown->isAwaited) {
        shown->isUnwanted = true;
        shown->next.reset();
    } else {
        retract(m_shown.take(key).number);
    }
}

QCoro::Task<std::optional<NotificationService>> DBusNotifications::service()
{
    const QDBusConnection bus = m_bus;
    const QDBusMessage about = co_await bus.asyncCall(callOf(u"GetServerInformation"_s));
    if (about.type() != QDBusMessage::ReplyMessage)
        co_return std::optional<NotificationService>();
    const QDBusMessage able = co_await bus.asyncCall(callOf(u"GetCapabilities"_s));
    co_return std::optional(NotificationService { about.arguments().value(0).toString(),
                                                  about.arguments().value(2).toString(),
                                                  able.arguments().value(0).toStringList() });
}

void DBusNotifications::retract(uint number)
{
    m_bus.asyncCall(callOf(u"CloseNotification"_s) << number);
}

void DBusNotifications::chosen(uint number, const QString &action)
{
    const QString key = keyOf(number);
    if (!key.isNull())
        Q_EMIT actionChosen(key, action);
}

void DBusNotifications::gone(uint number)
{
    const QString key = keyOf(number);
    if (key.isNull())
        return;
    if (m_shown[key].isAwaited) {
        // the answer that is on its way may be another notice
        m_shown[key].number = 0;
        return;
    }
    m_shown.remove(key);
    Q_EMIT closed(key);
}

void DBusNotifications::forgetAll()
{
    // an ended service took its notices along, and the next one counts from the beginning
    for (const QString &key : m_shown.keys()) {
        if (m_shown[key].isAwaited)
            continue;
        m_shown.remove(key);
        Q_EMIT closed(key);
    }
}

QString DBusNotifications::keyOf(uint number) const
{
    for (const auto &[key, shown] : m_shown.asKeyValueRange()) {
        if (number != 0 && shown.number == number)
            return key;
    }
    return {};
}

} // namespace kestrel
