#include "demo/Grants.h"
#include <QCryptographicHash>
#include <QRandomGenerator>
#include <array>

using namespace Qt::StringLiterals;

namespace kestrel::demo {

namespace {

constexpr std::chrono::minutes codeLifetime { 10 };

QByteArray base64Url(const QByteArray &bytes)
{
    return bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

GrantRefusal invalidGrant(const QString &description)
{
    return { .error = u"invalid_grant"_s, .description = description };
}

} // namespace

QString randomText()
{
    std::array<quint32, 8> words;
    QRandomGenerator::system()->fillRange(words.data(), words.size());
    return QString::fromLatin1(
        base64Url(QByteArray(reinterpret_cast<const char *>(words.data()), sizeof words)));
}

Grants::Grants(const Clock &clock, std::chrono::seconds accessTokenLifetime)
    : m_clock(clock)
    , m_lifetime(accessTokenLifetime)
{
}

QString Grants::issueCode(Authorization authorization)
{
    m_codes.removeIf([&](const auto &each) { return each->expiresAt <= m_clock.now(); });
    // the slash is Google's habit; it holds a client to decoding what the redirect carries
    const QString code = u"4/sample-"_s + randomText();
    m_codes.insert(code, { std::move(authorization), m_clock.now() + codeLifetime });
    return code;
}

std::expected<IssuedTokens, GrantRefusal> Grants::exchange(const QString &code, const QString &clientId,
                                                           const QString &redirectUri,
                                                           const QString &codeVerifier)
{
    const auto found = m_codes.constFind(code);
    if (found == m_codes.cend() || found->expiresAt <= m_clock.now())
        return std::unexpected(invalidGrant(u"Unknown, used or expired code."_s));
    const Authorization authorization = found->authorization;
    m_codes.erase(found); // a wrong try uses the code up as well

    if (authorization.clientId != clientId)
        return std::unexpected(
            GrantRefusal { 401, u"unauthorized_client"_s, u"The code is another client's."_s });
    if (authorization.redirectUri != redirectUri)
        return std::unexpected(GrantRefusal { 400, u"redirect_uri_mismatch"_s, u"Bad Request"_s });
    if (codeVerifier.isEmpty())
        return std::unexpected(invalidGrant(u"Missing code verifier."_s));
    const QByteArray digest = QCryptographicHash::hash(codeVerifier.toLatin1(), QCryptographicHash::Sha256);
    if (QString::fromLatin1(base64Url(digest)) != authorization.codeChallenge)
        return std::unexpected(invalidGrant(u"Invalid code verifier."_s));

    const int grant = ++m_lastGrant;
    m_grants.insert(grant, authorization);
    IssuedTokens tokens = issueAccessToken(grant);
    if (authorization.isOffline) {
        tokens.refreshToken = u"1//sample-"_s + randomText();
        m_refreshTokens.insert(tokens.refreshToken, grant);
    }
    return tokens;
}

std::expected<IssuedTokens, GrantRefusal> Grants::refresh(const QString &refreshToken,
                                                          const QString &clientId)
{
    const auto grant = m_grants.constFind(m_refreshTokens.value(refreshToken));
    if (grant == m_grants.cend())
        return std::unexpected(invalidGrant(u"Token has been expired or revoked."_s));
    if (!grant->clientId.isEmpty() && grant->clientId != clientId)
        return std::unexpected(
            GrantRefusal { 401, u"unauthorized_client"_s, u"The token is another client's."_s });
    return issueAccessToken(grant.key());
}

bool Grants::revoke(const QString &token)
{
    const auto access = m_accessTokens.constFind(token);
    return m_grants.remove(access == m_accessTokens.cend() ? m_refreshTokens.value(token) : access->grant)
        > 0;
}

std::optional<Authorization> Grants::holderOf(const QString &accessToken) const
{
    const auto access = m_accessTokens.constFind(accessToken);
    if (access == m_accessTokens.cend() || access->expiresAt <= m_clock.now())
        return {};
    const auto grant = m_grants.constFind(access->grant);
    return grant == m_grants.cend() ? std::nullopt : std::optional(*grant);
}

void Grants::addStandingGrant(const QString &refreshToken, const Authorization &authorization)
{
    m_grants.insert(++m_lastGrant, authorization);
    m_refreshTokens.insert(refreshToken, m_lastGrant);
}

void Grants::revokeAll()
{
    m_grants.clear();
    m_refreshTokens.clear();
    m_accessTokens.clear();
    m_codes.clear();
}

IssuedTokens Grants::issueAccessToken(int grant)
{
    m_accessTokens.removeIf([&](const auto &each) { return each->expiresAt <= m_clock.now(); });
    IssuedTokens tokens { .accessToken = u"sample-access-"_s + randomText(),
                          .refreshToken = {},
                          .lifetime = m_lifetime,
                          .scopes = m_grants.value(grant).scopes };
    m_accessTokens.insert(tokens.accessToken, { grant, m_clock.now() + m_lifetime });
    return tokens;
}

} // namespace kestrel::demo
