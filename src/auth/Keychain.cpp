#include "auth/Keychain.h"
#include "platform/SecretStore.h"

namespace kestrel {

namespace {

std::expected<void, KeychainError> outcomeOf(SecretStatus status)
{
    if (status == SecretStatus::Success)
        return {};
    return std::unexpected(KeychainError { KeychainError::Kind::UnexpectedStatus, qint32(status) });
}

// Static functions and no members: a keychain is a value that may be gone before the store answers.

QCoro::Task<std::expected<std::optional<QByteArray>, KeychainError>> readItem(SecretStore &secrets,
                                                                              SecretItem item)
{
    auto data = co_await secrets.copyMatching(std::move(item));
    if (data)
        co_return std::optional(std::move(*data));
    if (data.error() == SecretStatus::NotFound)
        co_return std::optional<QByteArray>();
    co_return std::unexpected(outcomeOf(data.error()).error());
}

QCoro::Task<std::expected<void, KeychainError>> writeItem(SecretStore &secrets, SecretItem item,
                                                          QByteArray data)
{
    auto status = co_await secrets.update(item, data);
    if (status == SecretStatus::NotFound)
        status = co_await secrets.add(item, data);
    co_return outcomeOf(status);
}

QCoro::Task<std::expected<void, KeychainError>> removeItem(SecretStore &secrets, SecretItem item)
{
    const auto status = co_await secrets.remove(std::move(item));
    co_return outcomeOf(status == SecretStatus::NotFound ? SecretStatus::Success : status);
}

} // namespace

Keychain::Keychain(SecretStore &secrets, QString service)
    : m_secrets(secrets)
    , m_service(std::move(service))
{
}

QCoro::Task<std::expected<std::optional<QByteArray>, KeychainError>> Keychain::read(QString account) const
{
    return readItem(m_secrets, { m_service, std::move(account) });
}

QCoro::Task<std::expected<void, KeychainError>> Keychain::write(QByteArray data, QString account) const
{
    return writeItem(m_secrets, { m_service, std::move(account) }, std::move(data));
}

QCoro::Task<std::expected<void, KeychainError>> Keychain::remove(QString account) const
{
    return removeItem(m_secrets, { m_service, std::move(account) });
}

} // namespace kestrel
