#include "auth/TokenStore.h"
#include "auth/JsonReader.h"
#include "auth/Utf8.h"
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

using KeychainOutcome = std::expected<void, KeychainError>;
using LoadFailure = std::variant<KeychainError, DecodingError>;

constexpr auto tokenKey = "token"_L1;
constexpr auto expiresAtKey = "expiresAt"_L1;

QString refreshTokenItem(const QString &prefix)
{
    return prefix + ".refresh_token"_L1;
}

QString accessTokenItem(const QString &prefix)
{
    return prefix + ".access_token"_L1;
}

// Coroutines of their own, since a token store is a value that may be gone before the keychain answers.

QCoro::Task<std::expected<std::optional<QString>, KeychainError>> readText(Keychain keychain, QString account)
{
    const auto data = co_await keychain.read(std::move(account));
    if (!data)
        co_return std::unexpected(data.error());
    if (!*data)
        co_return std::optional<QString>();
    auto text = fromStrictUtf8(**data);
    if (!text)
        co_return std::unexpected(KeychainError { KeychainError::Kind::DecodingFailed });
    co_return text;
}

QCoro::Task<KeychainOutcome> writeText(Keychain keychain, QString text, QString account)
{
    if (!text.isValidUtf16())
        co_return std::unexpected(KeychainError { KeychainError::Kind::DecodingFailed });
    co_return co_await keychain.write(text.toUtf8(), std::move(account));
}

QCoro::Task<std::expected<std::optional<AccessToken>, LoadFailure>> readAccessToken(Keychain keychain,
                                                                                    QString account)
{
    const auto data = co_await keychain.read(std::move(account));
    if (!data)
        co_return std::unexpected(LoadFailure(data.error()));
    if (!*data)
        co_return std::optional<AccessToken>();
    auto token = AccessToken::fromJson(**data);
    if (!token)
        co_return std::unexpected(LoadFailure(std::move(token.error())));
    co_return std::optional(std::move(*token));
}

} // namespace

QByteArray AccessToken::toJson() const
{
    const QJsonObject object { { tokenKey, token }, { expiresAtKey, toInternetDateTime(expiresAt) } };
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::expected<AccessToken, DecodingError> AccessToken::fromJson(const QByteArray &json)
{
    JsonReader reader(json);
    const QString token = reader.string(tokenKey);
    const QString expiry = reader.string(expiresAtKey);
    const auto expiresAt = expiry.contains(u'.') ? std::nullopt : parseInternetDateTime(expiry);
    if (!expiresAt)
        reader.fail(u"\"%1\" is no date-time in whole seconds"_s.arg(expiresAtKey));
    return reader.finish(AccessToken { token, expiresAt.value_or(Instant()) });
}

TokenStore::TokenStore(Keychain keychain, QString prefix)
    : m_keychain(std::move(keychain))
    , m_prefix(std::move(prefix))
{
}

QCoro::Task<std::expected<std::optional<QString>, KeychainError>> TokenStore::loadRefreshToken() const
{
    return readText(m_keychain, refreshTokenItem(m_prefix));
}

QCoro::Task<KeychainOutcome> TokenStore::saveRefreshToken(QString token) const
{
    return writeText(m_keychain, std::move(token), refreshTokenItem(m_prefix));
}

QCoro::Task<std::expected<std::optional<AccessToken>, LoadFailure>> TokenStore::loadAccessToken() const
{
    return readAccessToken(m_keychain, accessTokenItem(m_prefix));
}

QCoro::Task<KeychainOutcome> TokenStore::saveAccessToken(AccessToken token) const
{
    return m_keychain.write(token.toJson(), accessTokenItem(m_prefix));
}

QCoro::Task<KeychainOutcome> TokenStore::deleteRefreshToken() const
{
    return m_keychain.remove(refreshTokenItem(m_prefix));
}

QCoro::Task<KeychainOutcome> TokenStore::deleteAccessToken() const
{
    return m_keychain.remove(accessTokenItem(m_prefix));
}

} // namespace kestrel
