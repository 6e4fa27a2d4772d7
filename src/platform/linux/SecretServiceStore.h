#pragma once
#include "platform/SecretStore.h"
#include <memory>

namespace kestrel {

class KeyringLink;

/// Secrets in the desktop's password store, over the Secret Service API (freedesktop.org). Items carry
/// exactly the attributes `service` and `account` and live in the default collection; items of other
/// collections are found too.
///
/// An item is looked for first, and then the state of the default collection tells whether "nothing there"
/// can be believed: while it is locked, the answer is Locked. The person is asked to unlock once per locking;
/// one who says no is not asked again before it was open in between, or the service came anew. A question
/// that belongs to an operation itself (a first collection has to be created) is waited for, and ends in
/// Dismissed when it is closed.
///
/// Every call that is still under way when the store goes ends with Failed. Main thread only.
class SecretServiceStore final : public SecretStore
{
    Q_OBJECT
public:
    explicit SecretServiceStore(QObject *parent = nullptr);
    ~SecretServiceStore() override;

    [[nodiscard]] QCoro::Task<std::expected<QByteArray, SecretStatus>> copyMatching(SecretItem item) override;
    [[nodiscard]] QCoro::Task<SecretStatus> update(SecretItem item, QByteArray data) override;
    [[nodiscard]] QCoro::Task<SecretStatus> add(SecretItem item, QByteArray data) override;
    [[nodiscard]] QCoro::Task<SecretStatus> remove(SecretItem item) override;
    [[nodiscard]] QCoro::Task<SecretStoreCondition> condition() override;

private:
    std::shared_ptr<KeyringLink> m_link;
};

} // namespace kestrel
