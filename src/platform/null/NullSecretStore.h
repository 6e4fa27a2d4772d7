#pragma once
#include "platform/SecretStore.h"

namespace kestrel {

/// Where secrets cannot be kept at all.
class NullSecretStore final : public SecretStore
{
    Q_OBJECT
public:
    [[nodiscard]] QCoro::Task<std::expected<QByteArray, SecretStatus>>
    copyMatching(SecretItem /*item*/) override
    {
        co_return std::unexpected(SecretStatus::Unavailable);
    }
    [[nodiscard]] QCoro::Task<SecretStatus> update(SecretItem /*item*/, QByteArray /*data*/) override
    {
        co_return SecretStatus::Unavailable;
    }
    [[nodiscard]] QCoro::Task<SecretStatus> add(SecretItem /*item*/, QByteArray /*data*/) override
    {
        co_return SecretStatus::Unavailable;
    }
    [[nodiscard]] QCoro::Task<SecretStatus> remove(SecretItem /*item*/) override
    {
        co_return SecretStatus::Unavailable;
    }
    [[nodiscard]] QCoro::Task<SecretStoreCondition> condition() override { co_return {}; }
};

} // namespace kestrel
