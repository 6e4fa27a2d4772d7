#pragma once
#include "auth/AuthErrors.h"
#include "auth/GoogleConfiguration.h"
#include "auth/SignInSecrets.h"
#include "auth/TokenRefresher.h"
#include "auth/TokenResponse.h"
#include "auth/TokenStore.h"
#include "auth/UserInfo.h"
#include "base/Clock.h"
#include <QCoro/QCoroTask>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <expected>
#include <optional>
#include <utility>

namespace kestrel {

class HttpTransport;
class SecretStore;
class UrlOpener;

/// What every account's sign-in stands on; all of it outlives every GoogleOAuth.
struct AuthServices
{
    SecretStore &secrets;
    HttpTransport &transport;
    UrlOpener &opener;
    const Clock &clock;
    GoogleEndpoints endpoints;
    GoogleClient client;
    QString secretService; ///< the `service` attribute of this instance's secrets
};

/// How an account's access token has fared since the process started.
struct TokenHealth
{
    std::optional<Instant> expires; ///< of the last one that was read or made
    std::optional<Instant> renewed; ///< the last time that it worked
    QString failure; ///< causeOf() the last renewal, where that failed

    friend bool operator==(const TokenHealth &, const TokenHealth &) = default;
};

/// Signs one Google account in through the browser (authorization code with PKCE, RFC 7636, over a loopback
/// redirect), keeps a valid access token at hand, and forgets everything at sign-out. Tokens live in the
/// secret store alone; every accessToken() reads them back. Main thread only.
class GoogleOAuth final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isSignedIn READ isSignedIn NOTIFY isSignedInChanged)
public:
    /// What a person's consent gave; kept nowhere yet.
    struct Grant
    {
        QString refreshToken; ///< empty when the server gave none
        AccessToken accessToken;
        std::optional<QString> email; ///< as the user-info endpoint reported it
    };

    /// Starts reading the refresh token; isSignedIn follows when it was read, and again whenever a locked or
    /// missing secret store opens.
    GoogleOAuth(QString accountID, const AuthServices &services, QObject *parent = nullptr);
    ~GoogleOAuth() override;

    [[nodiscard]] const QString &accountID() const { return m_accountID; }
    [[nodiscard]] bool isSignedIn() const { return m_state == State::SignedIn; }
    /// There is no token, or the server takes it no more: only a person can help. Not so while the secret
    /// store has not answered, or cannot.
    [[nodiscard]] bool isSignedOut() const { return m_state == State::SignedOut; }
    [[nodiscard]] const TokenHealth &tokenHealth() const { return m_health; }
    /// As the user-info endpoint reported it.
    [[nodiscard]] const std::optional<QString> &accountEmail() const { return m_accountEmail; }

    /// The whole way through the browser; takes as long as the person does, at most two minutes.
    [[nodiscard]] QCoro::Task<std::expected<void, AuthError>> signIn();
    /// The same way, which leaves everything as it is: what it gave is for adopt() or revoke().
    [[nodiscard]] QCoro::Task<std::expected<Grant, AuthError>> askForConsent();
    /// Puts what was given in the place of the account's tokens, after a refresh that is under way: its
    /// refusal would be of the old ones.
    [[nodiscard]] QCoro::Task<std::expected<void, AuthError>> adopt(Grant grant);
    /// What comes of it is Google's affair.
    [[nodiscard]] QCoro::Task<void> revoke(QString token);
    /// A bearer token that is good for a minute at least.
    [[nodiscard]] QCoro::Task<std::expected<QString, AuthError>> accessToken();
    /// A new one, whatever the stored one's expiry says.
    [[nodiscard]] QCoro::Task<std::expected<QString, AuthError>> refreshAccessToken();
    /// Nothing when the endpoint answers with anything but 200.
    [[nodiscard]] QCoro::Task<std::expected<std::optional<Google::UserInfo>, AuthError>> fetchUserInfo();
    /// Revokes what it can and deletes both tokens.
    [[nodiscard]] QCoro::Task<std::expected<void, KeychainError>> signOut();

Q_SIGNALS:
    /// Or isSignedOut.
    void isSignedInChanged();
    void accountEmailChanged();

private:
    enum class State { Unknown, SignedOut, SignedIn };
    using Outcome = std::expected<void, AuthError>;
    using FormItems = QList<std::pair<QByteArray, QString>>;

    static QCoro::Task<void> readSignedIn(QPointer<GoogleOAuth> self);
    static QCoro::Task<TokenRefresher::Result> renewAccessToken(QPointer<GoogleOAuth> self);
    [[nodiscard]] QUrl authorizationUrl(const SignInSecrets &secrets, const QString &redirectUri) const;
    static QCoro::Task<TokenRefresher::Result> keepGrant(QPointer<GoogleOAuth> self, Grant grant);
    /// The browser's part and the exchange.
    [[nodiscard]] QCoro::Task<std::expected<Grant, AuthError>> consent();
    [[nodiscard]] QCoro::Task<std::expected<Grant, AuthError>> exchange(QString code, QString verifier,
                                                                        QString redirectUri);
    using UserInfoResult = std::expected<std::optional<Google::UserInfo>, AuthError>;
    [[nodiscard]] QCoro::Task<UserInfoResult> userInfoOf(QString accessToken);
    [[nodiscard]] HttpRequest request(QByteArray method, const QUrl &url) const;
    [[nodiscard]] HttpRequest tokenRequest(const FormItems &items) const;
    [[nodiscard]] AccessToken accessTokenOf(const TokenResponse &response) const;
    void setState(State state);
    void setAccountEmail(const std::optional<QString> &email);

    QString m_accountID;
    AuthServices m_services;
    TokenStore m_store;
    TokenRefresher m_refresher;
    State m_state = State::Unknown;
    TokenHealth m_health;
    int m_turn = 0; ///< counts sign-ins and sign-outs: what began before one must not undo it
    std::optional<QString> m_accountEmail;
};

} // namespace kestrel
