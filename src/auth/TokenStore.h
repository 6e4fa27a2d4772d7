#pragma once
#include "auth/Keychain.h"
#include "base/Instant.h"
#include <variant>

namespace kestrel {

struct AccessToken
{
    QString token;
    Instant expiresAt;

    /// {"token": …, "expiresAt": "2025-03-01T09:30:00Z"}: whole seconds.
    [[nodiscard]] QByteArray toJson() const;
    [[nodiscard]] static std::expected<AccessToken, DecodingError> fromJson(const QByteArray &json);
    friend bool operator==(const AccessToken &, const AccessToken &) = default;
};

/// The two secrets of one account, under "<prefix>.refresh_token" and "<prefix>.access_token".
class TokenStore final
{
public:
    TokenStore(Keychain keychain, QString prefix);

    /// Bytes that are not UTF-8 fail with DecodingFailed; whether that matters is the caller's to say.
    [[nodiscard]] QCoro::Task<std::expected<std::optional<QString>, KeychainError>> loadRefreshToken() const;
    [[nodiscard]] QCoro::Task<std::expected<void, KeychainError>> saveRefreshToken(QString token) const;
    [[nodiscard]] QCoro::Task<
        std::expected<std::optional<AccessToken>, std::variant<KeychainError, DecodingError>>>
    loadAccessToken() const;
    [[nodiscard]] QCoro::Task<std::expected<void, KeychainError>> saveAccessToken(AccessToken token) const;
    [[nodiscard]] QCoro::Task<std::expected<void, KeychainError>> deleteRefreshToken() const;
    [[nodiscard]] QCoro::Task<std::expected<void, KeychainError>> deleteAccessToken() const;

private:
    Keychain m_keychain;
    QString m_prefix;
};

} // namespace kestrel
