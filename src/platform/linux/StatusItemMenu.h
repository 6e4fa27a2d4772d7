#pragma once
#include "platform/StatusItemHost.h"
#include "platform/linux/DBusServedObject.h"
#include <QStringList>

namespace kestrel {

/// The status item's menu as com.canonical.dbusmenu: one level of entries. Says only what changed.
class StatusItemMenu final : public DBusServedObject
{
    Q_OBJECT
public:
    explicit StatusItemMenu(QDBusConnection bus);

    void setEntries(const QList<StatusItemMenuEntry> &entries);

    static constexpr QLatin1StringView path { "/MenuBar" };

Q_SIGNALS:
    void triggered(const QString &id);

protected:
    [[nodiscard]] QVariantMap properties() const override;
    std::optional<QVariantList> call(const QString &method, const QVariantList &arguments) override;

private:
    [[nodiscard]] QList<int> numbers() const;
    [[nodiscard]] QVariantMap propertiesOf(int number, const QStringList &names) const;
    [[nodiscard]] bool trigger(int number, const QString &event);

    QList<StatusItemMenuEntry> m_entries;
    /// An entry's number is its id's place in here. It stays its own when the menu changes: what was clicked
    /// in a menu that is still open from before means the same.
    QStringList m_ids { QString() };
    uint m_revision = 1;
};

} // namespace kestrel
