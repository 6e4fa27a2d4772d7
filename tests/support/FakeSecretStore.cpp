#include "support/FakeSecretStore.h"
#include <QCoro/QCoroSignal>

using namespace Qt::StringLiterals;

namespace kestrel {

SecretStatus FakeSecretStore::begin(const QString &call, const SecretItem &item)
{
    calls.append(call + u' ' + item.account);
    items.append(item);
    if (m_locked)
        return SecretStatus::Locked;
    return failures.contains(call) ? failures.take(call) : SecretStatus::Success;
}

QCoro::Task<std::expected<QByteArray, SecretStatus>> FakeSecretStore::copyMatching(SecretItem item)
{
    if (const auto status = begin(u"copyMatching"_s, item); status != SecretStatus::Success)
        co_return std::unexpected(status);
    if (!secrets.contains(item.account))
        co_return std::unexpected(SecretStatus::NotFound);
    co_return secrets.value(item.account);
}

QCoro::Task<SecretStatus> FakeSecretStore::update(SecretItem item, QByteArray data)
{
    if (const auto status = begin(u"update"_s, item); status != SecretStatus::Success)
        co_return status;
    if (!secrets.contains(item.account))
        co_return SecretStatus::NotFound;
    secrets.insert(item.account, data);
    co_return SecretStatus::Success;
}

QCoro::Task<SecretStatus> FakeSecretStore::add(SecretItem item, QByteArray data)
{
    if (const auto status = begin(u"add"_s, item); status != SecretStatus::Success)
        co_return status;
    secrets.insert(item.account, data);
    co_return SecretStatus::Success;
}

QCoro::Task<SecretStatus> FakeSecretStore::remove(SecretItem item)
{
    if (const auto status = begin(u"remove"_s, item); status != SecretStatus::Success)
        co_return status;
    co_return secrets.remove(item.account) > 0 ? SecretStatus::Success : SecretStatus::NotFound;
}

QCoro::Task<SecretStoreCondition> FakeSecretStore::condition()
{
    if (isMute)
        co_await qCoro(this, &FakeSecretStore::spoken);
    co_return SecretStoreCondition { SecretStoreCondition::Place::SecretService, u"gnome-keyring-d"_s,
                                     m_locked ? SecretStatus::Locked : health };
}

} // namespace kestrel
