#pragma once
#include "base/Clock.h"
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <expected>
#include <optional>

namespace kestrel::demo {

/// What a person allowed on the consent page.
struct Authorization
{
    QString account; ///< its mail address
    QString clientId;
    QString redirectUri;
    QString codeChallenge; ///< S256 (RFC 7636)
    QStringList scopes;
    bool isOffline = false; ///< a refresh token was asked for
};

struct IssuedTokens
{
    QString accessToken;
    QString refreshToken; ///< empty when none was issued
    std::chrono::seconds lifetime;
    QStringList scopes;
};

struct GrantRefusal
{
    int status = 400;
    QString error;
    QString description;
};

/// The authorization server's memory: codes, refresh tokens, access tokens. Nothing is written anywhere. The
/// clock outlives it.
class Grants final
{
public:
    explicit Grants(const Clock &clock, std::chrono::seconds accessTokenLifetime);

    /// Good once, for ten minutes.
    [[nodiscard]] QString issueCode(Authorization authorization);
    [[nodiscard]] std::expected<IssuedTokens, GrantRefusal> exchange(const QString &code,
                                                                     const QString &clientId,
                                                                     const QString &redirectUri,
                                                                     const QString &codeVerifier);
    [[nodiscard]] std::expected<IssuedTokens, GrantRefusal> refresh(const QString &refreshToken,
                                                                    const QString &clientId);
    /// Ends the grant behind a refresh or an access token; false when there is none.
    bool revoke(const QString &token);
    /// The grant behind a valid access token.
    [[nodiscard]] std::optional<Authorization> holderOf(const QString &accessToken) const;

    /// A grant whose refresh token is known beforehand, for any client.
    void addStandingGrant(const QString &refreshToken, const Authorization &authorization);
    void expireAccessTokens() { m_accessTokens.clear(); }
    void revokeAll();

private:
    struct Code
    {
        Authorization authorization;
        Instant expiresAt;
    };
    struct AccessToken
    {
        int grant;
        Instant expiresAt;
    };

    [[nodiscard]] IssuedTokens issueAccessToken(int grant);

    const Clock &m_clock;
    std::chrono::seconds m_lifetime;
    int m_lastGrant = 0;
    QHash<int, Authorization> m_grants;
    QHash<QString, Code> m_codes;
    QHash<QString, int> m_refreshTokens; ///< to the grant, which may have been revoked since
    QHash<QString, AccessToken> m_accessTokens;
};

/// 43 characters that nobody can guess.
[[nodiscard]] QString randomText();

} // namespace kestrel::demo
