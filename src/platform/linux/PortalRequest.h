#pragma once
#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantMap>

class QDBusPendingCallWatcher;

namespace kestrel {

/// One question to the desktop portal, which may ask the person before it answers
/// (org.freedesktop.portal.Request). Destroyed before it was answered it is taken back, with the portal's
/// dialog. Main thread only.
class PortalRequest final : public QObject
{
    Q_OBJECT
public:
    /// Calls `method` of org.freedesktop.portal.`interfaceName` with `arguments` and, after them, `options`.
    PortalRequest(QDBusConnection bus, const QString &interfaceName, const QString &method,
                  const QVariantList &arguments, QVariantMap options, QObject *parent = nullptr);
    ~PortalRequest() override;
    PortalRequest(const PortalRequest &) = delete;
    PortalRequest &operator=(const PortalRequest &) = delete;

    static constexpr QLatin1StringView service { "org.freedesktop.portal.Desktop" };
    static constexpr QLatin1StringView path { "/org/freedesktop/portal/desktop" };
    /// A part of an object path that no other question of this process has.
    [[nodiscard]] static QString newToken();

Q_SIGNALS:
    void granted(const QVariantMap &results);
    /// The person said no, the portal failed, or there is none.
    void failed(const QString &why);

private:
    Q_SLOT void onResponse(uint response, const QVariantMap &results);
    void taken(QDBusPendingCallWatcher *call);
    void listenTo(const QString &handle);
    void stopListening();

    QDBusConnection m_bus;
    QString m_handle; ///< the question's object; empty once it is answered
};

} // namespace kestrel
