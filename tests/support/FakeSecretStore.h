#pragma once
#include "platform/SecretStore.h"
#include <QList>
#include <QMap>
#include <QStringList>

namespace kestrel {

/// Secrets in memory, with a record of the calls and a lock. `failures` gives the status of the next call of
/// a kind
/// ("copyMatching", "update", "add", "remove") in place of what it would do.
class FakeSecretStore final : public SecretStore
{
    Q_OBJECT
public:
    [[nodiscard]] QCoro::Task<std::expected<QByteArray, SecretStatus>> copyMatching(SecretItem item) override;
    [[nodiscard]] QCoro::Task<SecretStatus> update(SecretItem item, QByteArray data) override;
    [[nodiscard]] QCoro::Task<SecretStatus> add(SecretItem item, QByteArray data) override;
    [[nodiscard]] QCoro::Task<SecretStatus> remove(SecretItem item) override;
    [[nodiscard]] QCoro::Task<SecretStoreCondition> condition() override;

    /// By account name; the service is checked by the tests that care for it.
    QMap<QString, QByteArray> secrets;
    QList<SecretItem> items;
    /// "update google.A.refresh_token" and so on, in order.
    QStringList calls;
    QMap<QString, SecretStatus> failures;
    SecretStatus health = SecretStatus::Success; ///< what condition() says while it is not locked
    bool isMute = false; ///< condition() waits for speak()

    void lock() { m_locked = true; }
    void unlock()
    {
        m_locked = false;
        Q_EMIT opened();
    }
    void speak()
    {
        isMute = false;
        Q_EMIT spoken();
    }

Q_SIGNALS:
    void spoken();

private:
    /// What the call ends with before it looks at any item.
    SecretStatus begin(const QString &call, const SecretItem &item);

    bool m_locked = false;
};

} // namespace kestrel
