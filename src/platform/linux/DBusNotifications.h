#pragma once
#include "platform/Notifications.h"
#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QHash>
#include <optional>

namespace kestrel {

/// org.freedesktop.Notifications. Every call is asynchronous; a desktop without the service is logged once.
/// Main thread only.
class DBusNotifications final : public Notifications
{
    Q_OBJECT
public:
    explicit DBusNotifications(QDBusConnection bus, QObject *parent = nullptr);

    void show(const Notice &notice) override;
    void close(const QString &key) override;
    [[nodiscard]] QCoro::Task<std::optional<NotificationService>> service() override;

private Q_SLOTS:
    void chosen(uint number, const QString &action);
    void gone(uint number);

private:
    /// A notice on the screen, or on its way there.
    struct Shown
    {
        uint number = 0; ///< the service's; 0 until it answered
        bool isAwaited = false; ///< an answer is on its way
        bool isUnwanted = false; ///< closed meanwhile
        std::optional<Notice> next; ///< shown again meanwhile
    };

    void send(const Notice &notice);
    void taken(const QString &key, const QDBusMessage &answer);
    void retract(uint number);
    void forgetAll();
    [[nodiscard]] QString keyOf(uint number) const;

    QDBusConnection m_bus;
    QDBusServiceWatcher m_service;
    QHash<QString, Shown> m_shown;
    bool m_hasComplained = false;
};

} // namespace kestrel
