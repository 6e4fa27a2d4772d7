#pragma once
#include "platform/ShortcutBackend.h"
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QVariantMap>
#include <memory>
#include <optional>

namespace kestrel {

class PortalRequest;

/// The desktop portal's global shortcuts (org.freedesktop.portal.GlobalShortcuts, version 1), for Wayland. A
/// session of the portal is bound once, so another set is another session; the keys that a shortcut really
/// has are the desktop's choice, ours are a proposal. Suspended, presses are dropped, but the desktop keeps
/// the keys. Without such a portal every shortcut is refused until one comes. Main thread only.
class PortalShortcuts final : public ShortcutBackend
{
    Q_OBJECT
public:
    explicit PortalShortcuts(QDBusConnection bus, QObject *parent = nullptr);
    ~PortalShortcuts() override;
    PortalShortcuts(const PortalShortcuts &) = delete;
    PortalShortcuts &operator=(const PortalShortcuts &) = delete;

    [[nodiscard]] Kind kind() const override { return Kind::Portal; }
    void bind(const QList<Shortcut> &shortcuts) override;
    void setSuspended(bool suspended) override { m_isSuspended = suspended; }

private:
    void openSession();
    void bindSession(const QVariantMap &results);
    void learn(const QVariantMap &results);
    [[nodiscard]] QList<Outcome> outcomesFrom(const QVariant &taken) const;
    void refuse(const QString &why);
    void answer(const QList<Outcome> &outcomes);
    void endRequest();
    void closeSession();
    void forgetSession();
    void onOwnerChanged(const QString &before, const QString &after);

private Q_SLOTS:
    void onActivated(const QDBusMessage &message);
    void onShortcutsChanged(const QDBusMessage &message);
    void onSessionClosed();

private:
    QDBusConnection m_bus;
    QDBusServiceWatcher m_service;
    QList<Shortcut> m_shortcuts;
    std::optional<QList<Outcome>> m_outcomes; ///< of m_shortcuts, once they are known
    std::unique_ptr<PortalRequest> m_request; ///< the question that is open
    QString m_session; ///< its object path; empty without one
    QString m_lastComplaint;
    bool m_isSuspended = false;
};

} // namespace kestrel
