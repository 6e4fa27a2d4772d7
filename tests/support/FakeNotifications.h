#pragma once
#include "platform/Notifications.h"
#include <QMap>
#include <QStringList>

namespace kestrel {

/// Notifications in memory. `isAvailable` = false: nobody shows them, and each ends as soon as it is shown.
class FakeNotifications final : public Notifications
{
    Q_OBJECT
public:
    void show(const Notice &notice) override
    {
        shown.append(notice);
        if (!isAvailable) {
            Q_EMIT closed(notice.key);
            return;
        }
        open.insert(notice.key, notice);
    }
    void close(const QString &key) override { open.remove(key); }
    [[nodiscard]] QCoro::Task<std::optional<NotificationService>> service() override
    {
        co_return isAvailable ? std::optional(current) : std::nullopt;
    }

    /// The person presses one of the buttons; as on real desktops, the notice goes with it.
    void choose(const QString &key, const QString &action)
    {
        Q_EMIT actionChosen(key, action);
        dismiss(key);
    }
    void dismiss(const QString &key)
    {
        if (open.remove(key) > 0)
            Q_EMIT closed(key);
    }

    QList<Notice> shown; ///< all of them, in order
    QMap<QString, Notice> open;
    bool isAvailable = true;
    NotificationService current { QStringLiteral("mako"),
                                  QStringLiteral("1.7"),
                                  { QStringLiteral("actions") } };
};

} // namespace kestrel
