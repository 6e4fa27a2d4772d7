#pragma once
#include <QDBusConnection>
#include <QDBusVirtualObject>

namespace kestrel {

/// A panel that takes status items, reads them as panels do, and can be restarted. On a bus connection of its
/// own.
class SoakPanel final : public QDBusVirtualObject
{
    Q_OBJECT
public:
    SoakPanel();
    ~SoakPanel() override;

    void start();
    void stop();
    /// Items that have registered since the start.
    [[nodiscard]] qsizetype items() const { return m_items; }

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

public Q_SLOTS:
    /// The item says that something about it is new.
    void readAgain(const QDBusMessage &message);

private:
    void ask(const QString &service, const QString &path, const QString &method,
             const QVariantList &arguments, const QString &interface);

    QDBusConnection m_bus;
    qsizetype m_items = 0;
};

} // namespace kestrel
