#pragma once
#include "auth/AuthErrors.h"
#include "platform/AwaitedBytes.h"
#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QString>
#include <expected>
#include <optional>

namespace kestrel {

class SecretStore;

/// Items of one service in the secret store: read, write as update-or-add, delete. An absent item is never an
/// error.
class Keychain final
{
public:
    Keychain(SecretStore &secrets, QString service);

    [[nodiscard]] QCoro::Task<std::expected<std::optional<QByteArray>, KeychainError>>
    read(QString account) const;
    [[nodiscard]] QCoro::Task<std::expected<void, KeychainError>> write(QByteArray data,
                                                                        QString account) const;
    [[nodiscard]] QCoro::Task<std::expected<void, KeychainError>> remove(QString account) const;

private:
    SecretStore &m_secrets;
    QString m_service;
};

} // namespace kestrel
