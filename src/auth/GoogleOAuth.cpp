#include "auth/GoogleOAuth.h"
#include "auth/LoopbackServer.h"
#include "base/Log.h"
#include "base/StartTask.h"
#include "platform/SecretStore.h"
#include "platform/UrlOpener.h"
#include <QByteArrayList>
#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr auto signInTime = 120s;
constexpr auto smallestLifetime = 60s; ///< an access token with less left is renewed
constexpr qint64 usualLifetime = 3500; ///< in seconds, when the answer names none

const QString scopes = u"https://www.googleapis.com/auth/calendar.events.readonly "
                       "https://www.googleapis.com/auth/calendar.readonly openid email"_s;

AuthError notSignedIn()
{
    return OAuthError { OAuthError::Kind::NotSignedIn, 0, {} };
}

AuthError browserOpenFailed()
{
    return OAuthError { OAuthError::Kind::BrowserOpenFailed, 0, {} };
}

/// For what already fails on this machine, before there is a server to answer.
AuthError noExchange(const QString &why)
{
    return OAuthError { OAuthError::Kind::TokenExchangeFailed, -1, why };
}

/// application/x-www-form-urlencoded, with what a URL's path may hold left as it is, save "+", "&" and "=".
QByteArray formEncoded(const QString &text)
{
    return QUrl::toPercentEncoding(text, "!$'()*,/:@");
}

/// A refresh token that is not there leaves the one that is stored.
QCoro::Task<std::expected<void, KeychainError>> saveTokens(TokenStore store, GoogleOAuth::Grant grant)
{
    if (!grant.refreshToken.isEmpty()) {
        if (const auto saved = co_await store.saveRefreshToken(grant.refreshToken); !saved)
            co_return saved;
    }
    co_return co_await store.saveAccessToken(grant.accessToken);
}

} // namespace

GoogleOAuth::GoogleOAuth(QString accountID, const AuthServices &services, QObject *parent)
    : QObject(parent)
    , m_accountID(std::move(accountID))
    , m_services(services)
    , m_store(Keychain(services.secrets, services.secretService), "google."_L1 + m_accountID)
{
    connect(&services.secrets, &SecretStore::opened, this,
            [this] { startTask("reading whether an account is signed in", readSignedIn(this)); });
    startTask("reading whether an account is signed in", readSignedIn(this));
}

GoogleOAuth::~GoogleOAuth() = default;

QCoro::Task<void> GoogleOAuth::readSignedIn(QPointer<GoogleOAuth> self)
{
    const int turn = self->m_turn;
    const auto token = co_await self->m_store.loadRefreshToken();
    if (!self || self->m_turn != turn)
        co_return;
    if (token)
        self->setState(token->value_or(QString()).isEmpty() ? State::SignedOut : State::SignedIn);
}

QCoro::Task<GoogleOAuth::Outcome> GoogleOAuth::signIn()
{
    const QPointer self(this);
    const TokenStore store = m_store;
    const auto grant = co_await consent();
    if (!grant)
        co_return std::unexpected(grant.error());
    if (const auto saved = co_await saveTokens(store, *grant); !saved)
        co_return std::unexpected(saved.error());
    if (!self)
        co_return std::unexpected(notSignedIn());
    (void)co_await fetchUserInfo(); // an account without a known address is signed in all the same
    if (!self)
        co_return std::unexpected(notSignedIn());

    ++m_turn;
    setState(State::SignedIn);
    qCInfo(lcAuth).noquote() << "Signed into Google account" << m_accountID;
    co_return Outcome();
}

QCoro::Task<std::expected<GoogleOAuth::Grant, AuthError>> GoogleOAuth::askForConsent()
{
    const QPointer self(this);
    auto grant = co_await consent();
    if (!grant)
        co_return grant;
    if (!self)
        co_return std::unexpected(notSignedIn());
    if (const auto user = co_await userInfoOf(grant->accessToken.token); user && *user)
        grant->email = (*user)->email;
    co_return grant;
}

QCoro::Task<GoogleOAuth::Outcome> GoogleOAuth::adopt(Grant grant)
{
    const QPointer self(this);
    const auto isKept =
        std::make_shared<bool>(false); // a refresh that is under way is what is waited for first
    TokenRefresher::Result kept;
    while (self && !*isKept) {
        kept = co_await m_refresher.refresh([self, grant, isKept] {
            *isKept = true;
            return keepGrant(self, grant);
        });
    }
    if (!self)
        co_return std::unexpected(notSignedIn());
    if (!kept)
        co_return std::unexpected(kept.error());
    co_return Outcome();
}

QCoro::Task<TokenRefresher::Result> GoogleOAuth::keepGrant(QPointer<GoogleOAuth> self, Grant grant)
{
    const TokenStore store = self->m_store;
    const int turn = ++self->m_turn;
    const auto saved = co_await saveTokens(store, grant);
    if (!self || self->m_turn != turn) { // a sign-out came in between
        (void)co_await store.deleteRefreshToken();
        (void)co_await store.deleteAccessToken();
        co_return std::unexpected(notSignedIn());
    }
    if (!saved)
        co_return std::unexpected(saved.error());
    self->m_health = { grant.accessToken.expiresAt, self->m_services.clock.now(), {} };
    if (grant.email)
        self->setAccountEmail(grant.email);
    self->setState(State::SignedIn);
    qCInfo(lcAuth).noquote() << "Signed into Google account" << self->m_accountID;
    co_return grant.accessToken.token;
}

QCoro::Task<std::expected<GoogleOAuth::Grant, AuthError>> GoogleOAuth::consent()
{
    const QPointer self(this);
    if (!m_services.client.isComplete())
        co_return std::unexpected(noExchange(u"Kestrel has no Google client identifier and secret"_s));
    const auto secrets = SignInSecrets::generate();
    if (!secrets)
        co_return std::unexpected(noExchange(u"The system has no secure random numbers"_s));

    // it stops when this ends, however it ends
    const auto server = std::make_unique<LoopbackServer>();
    connect(this, &QObject::destroyed, server.get(), &LoopbackServer::stop);
    const auto waiting = server->waitForCallback(signInTime);
    if (server->port() == 0)
        co_return std::unexpected(browserOpenFailed());
    const QString redirectUri = u"http://127.0.0.1:%1/callback"_s.arg(server->port());

    const bool isOpen = co_await m_services.opener.open(authorizationUrl(*secrets, redirectUri));
    if (!self)
        co_return std::unexpected(notSignedIn());
    if (!isOpen)
        co_return std::unexpected(browserOpenFailed());

    const auto callback = co_await waiting;
    if (!self)
        co_return std::unexpected(notSignedIn());
    if (!callback)
        co_return std::unexpected(callback.error());
    if (callback->state != secrets->state)
        co_return std::unexpected(OAuthError { OAuthError::Kind::StateMismatch, 0, {} });

    co_return co_await exchange(callback->code, secrets->verifier, redirectUri);
}

QUrl GoogleOAuth::authorizationUrl(const SignInSecrets &secrets, const QString &redirectUri) const
{
    const FormItems items {
        { "client_id", m_services.client.identifier },
        { "redirect_uri", redirectUri },
        { "response_type", u"code"_s },
        { "scope", scopes },
        { "code_challenge", secrets.challenge },
        { "code_challenge_method", u"S256"_s },
        { "state", secrets.state },
        { "access_type", u"offline"_s },
        { "prompt", u"consent"_s },
        { "include_granted_scopes", u"true"_s },
    };
    QByteArrayList query;
    for (const auto &[name, value] : items)
        query.append(name + '=' + QUrl::toPercentEncoding(value, ":/"));
    QUrl url = m_services.endpoints.authorization;
    url.setQuery(QString::fromLatin1(query.join('&')), QUrl::StrictMode);
    return url;
}

QCoro::Task<std::expected<GoogleOAuth::Grant, AuthError>>
GoogleOAuth::exchange(QString code, QString verifier, QString redirectUri)
{
    const QPointer self(this);
    HttpRequest request = tokenRequest({
        { "grant_type", u"authorization_code"_s },
        { "code", code },
        { "code_verifier", verifier },
        { "client_id", m_services.client.identifier },
        { "client_secret", m_services.client.secret },
        { "redirect_uri", redirectUri },
    });
    const auto answer = co_await m_services.transport.send(std::move(request));
    if (!self)
        co_return std::unexpected(notSignedIn());
    if (!answer)
        co_return std::unexpected(answer.error());
    if (!answer->isSuccess()) {
        co_return std::unexpected(OAuthError { OAuthError::Kind::TokenExchangeFailed,
                                               answer->statusOrMinusOne(), answer->bodyText() });
    }
    const auto tokens = TokenResponse::fromJson(answer->body);
    if (!tokens)
        co_return std::unexpected(tokens.error());
    co_return Grant { tokens->refreshToken.value_or(QString()), accessTokenOf(*tokens), {} };
}

QCoro::Task<TokenRefresher::Result> GoogleOAuth::accessToken()
{
    const QPointer self(this);
    const auto stored = co_await m_store.loadAccessToken();
    if (!self)
        co_return std::unexpected(notSignedIn());
    if (stored && *stored && (*stored)->expiresAt > m_services.clock.now() + smallestLifetime) {
        m_health.expires = (*stored)->expiresAt;
        if (m_state == State::SignedOut) // the store came to hold tokens again without a word
            startTask("reading whether an account is signed in", readSignedIn(this));
        co_return (*stored)->token;
    }
    co_return co_await refreshAccessToken();
}

QCoro::Task<TokenRefresher::Result> GoogleOAuth::refreshAccessToken()
{
    const QPointer self(this);
    const auto renewed = co_await m_refresher.refresh([self] { return renewAccessToken(self); });
    // with nothing to renew it by, what took that away is what counts
    if (self && renewed != std::unexpected(AuthError(notSignedIn())))
        m_health.failure = renewed ? QString() : causeOf(renewed.error());
    co_return renewed;
}

QCoro::Task<TokenRefresher::Result> GoogleOAuth::renewAccessToken(QPointer<GoogleOAuth> self)
{
    const TokenStore store = self->m_store;
    const int turn = self->m_turn;
    const auto refreshToken = co_await store.loadRefreshToken();
    if (!self)
        co_return std::unexpected(notSignedIn());
    if (!refreshToken)
        co_return std::unexpected(refreshToken.error());
    if (refreshToken->value_or(QString()).isEmpty())
        co_return std::unexpected(notSignedIn());

    HttpRequest request = self->tokenRequest({
        { "client_id", self->m_services.client.identifier },
        { "client_secret", self->m_services.client.secret },
        { "refresh_token", **refreshToken },
        { "grant_type", u"refresh_token"_s },
    });
    const auto answer = co_await self->m_services.transport.send(std::move(request));
    // a token that arrives after a sign-out must not be kept
    if (!self || self->m_turn != turn)
        co_return std::unexpected(notSignedIn());
    if (!answer)
        co_return std::unexpected(answer.error());

    if (!answer->isSuccess()) {
        const OAuthError refused { OAuthError::Kind::RefreshFailed, answer->statusOrMinusOne(),
                                   answer->bodyText() };
        if (refused.status == 400 || refused.status == 401) {
            (void)co_await store.deleteRefreshToken();
            (void)co_await store.deleteAccessToken();
            if (!self)
                co_return std::unexpected(notSignedIn());
            ++self->m_turn;
            self->setState(State::SignedOut);
        }
        co_return std::unexpected(refused);
    }
    const auto tokens = TokenResponse::fromJson(answer->body);
    if (!tokens)
        co_return std::unexpected(tokens.error());
    const AccessToken accessToken = self->accessTokenOf(*tokens);
    const auto saved = co_await store.saveAccessToken(accessToken);
    if (!self)
        co_return std::unexpected(notSignedIn());
    if (!saved)
        co_return std::unexpected(saved.error());
    self->setState(State::SignedIn);
    self->m_health.expires = accessToken.expiresAt;
    self->m_health.renewed = self->m_services.clock.now();
    co_return tokens->accessToken;
}

QCoro::Task<std::expected<std::optional<Google::UserInfo>, AuthError>> GoogleOAuth::fetchUserInfo()
{
    const QPointer self(this);
    const auto token = co_await accessToken();
    if (!self)
        co_return std::unexpected(notSignedIn());
    if (!token)
        co_return std::unexpected(token.error());
    auto user = co_await userInfoOf(*token);
    if (self && user && *user)
        setAccountEmail((*user)->email);
    co_return user;
}

QCoro::Task<GoogleOAuth::UserInfoResult> GoogleOAuth::userInfoOf(QString accessToken)
{
    const QPointer self(this);
    HttpRequest question = request("GET", m_services.endpoints.userInfo);
    question.headers = { { "Authorization", "Bearer " + accessToken.toUtf8() } };
    const auto answer = co_await m_services.transport.send(std::move(question));
    if (!self)
        co_return std::unexpected(notSignedIn());
    if (!answer)
        co_return std::unexpected(answer.error());
    if (answer->status != 200)
        co_return std::optional<Google::UserInfo>();
    auto user = Google::UserInfo::fromJson(answer->body);
    if (!user)
        co_return std::unexpected(user.error());
    co_return std::optional(std::move(*user));
}

QCoro::Task<std::expected<void, KeychainError>> GoogleOAuth::signOut()
{
    const QPointer self(this);
    const TokenStore store = m_store; // the tokens go even where this object goes first
    const auto refreshToken = co_await store.loadRefreshToken();
    if (self && refreshToken && !refreshToken->value_or(QString()).isEmpty())
        co_await revoke(**refreshToken);
    if (auto deleted = co_await store.deleteRefreshToken(); !deleted)
        co_return deleted;
    if (auto deleted = co_await store.deleteAccessToken(); !deleted)
        co_return deleted;
    if (self) {
        ++m_turn;
        setAccountEmail({});
        setState(State::SignedOut);
        qCInfo(lcAuth).noquote() << "Signed out of Google account" << m_accountID;
    }
    co_return std::expected<void, KeychainError>();
}

QCoro::Task<void> GoogleOAuth::revoke(QString token)
{
    QUrl url = m_services.endpoints.revocation;
    url.setQuery(QString::fromLatin1("token=" + QUrl::toPercentEncoding(token)), QUrl::StrictMode);
    (void)co_await m_services.transport.send(request("POST", url));
}

HttpRequest GoogleOAuth::request(QByteArray method, const QUrl &url) const
{
    HttpRequest request;
    request.method = std::move(method);
    request.url = url;
    request.account = m_accountID;
    return request;
}

HttpRequest GoogleOAuth::tokenRequest(const FormItems &items) const
{
    QByteArrayList form;
    for (const auto &[name, value] : items)
        form.append(name + '=' + formEncoded(value));
    HttpRequest request = this->request("POST", m_services.endpoints.token);
    request.headers = { { "Content-Type", "application/x-www-form-urlencoded" } };
    request.body = form.join('&');
    return request;
}

AccessToken GoogleOAuth::accessTokenOf(const TokenResponse &response) const
{
    // no sane lifetime comes near the bound; an insane one must not leave the range of dates
    constexpr qint64 tenYears = 10LL * 365 * 24 * 3600;
    const auto lifetime = std::clamp(response.expiresIn.value_or(usualLifetime), -tenYears, tenYears);
    return { response.accessToken, m_services.clock.now() + std::chrono::seconds(lifetime) };
}

void GoogleOAuth::setState(State state)
{
    if (std::exchange(m_state, state) != state)
        Q_EMIT isSignedInChanged();
}

void GoogleOAuth::setAccountEmail(const std::optional<QString> &email)
{
    if (std::exchange(m_accountEmail, email) != email)
        Q_EMIT accountEmailChanged();
}

} // namespace kestrel
