#pragma once
#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QVariantMap>
#include <optional>

namespace kestrel {

/// An object on the bus with one interface, whose properties may come and go, which an adaptor's cannot.
/// Registered for as long as it lives.
class DBusServedObject : public QDBusVirtualObject
{
    Q_OBJECT
public:
    /// `members`: the interface's methods and signals as introspection data.
    DBusServedObject(QDBusConnection bus, QString path, QString interface, QString members);
    ~DBusServedObject() override;

    [[nodiscard]] QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

protected:
    [[nodiscard]] virtual QVariantMap properties() const = 0;
    /// Answers `method`, which comes with its arguments' signature: "Event(isvu)". Nothing: there is no such
    /// method.
    virtual std::optional<QVariantList> call(const QString &method, const QVariantList &arguments) = 0;

    void announce(const QString &signal, const QVariantList &arguments = {});

private:
    [[nodiscard]] QDBusMessage answer(const QDBusMessage &message);

    QDBusConnection m_bus;
    QString m_path;
    QString m_interface;
    QString m_members;
};

} // namespace kestrel
