#pragma once
#include "platform/Notifications.h"

namespace kestrel {

/// Where there is nobody to show notifications.
class NullNotifications final : public Notifications
{
    Q_OBJECT
public:
    using Notifications::Notifications;

    void show(const Notice & /*notice*/) override { }
    void close(const QString & /*key*/) override { }
    [[nodiscard]] QCoro::Task<std::optional<NotificationService>> service() override { co_return {}; }
};

} // namespace kestrel
