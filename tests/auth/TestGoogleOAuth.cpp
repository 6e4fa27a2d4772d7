#include "auth/GoogleOAuth.h"
#include "auth/PlayedBrowser.h"
#include "auth/Stepwise.h"
#include "base/Started.h"
#include "support/FakeHttpTransport.h"
#include "support/FakeSecretStore.h"
#include "support/FakeUrlOpener.h"
#include <QCryptographicHash>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>
#include <QUrlQuery>
#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

const Instant now = *parseInternetDateTime(u"2025-03-01T09:00:00Z");
const QString refreshItem = u"google.A.refresh_token"_s;
const QString accessItem = u"google.A.access_token"_s;

QByteArray base64Url(const QByteArray &bytes)
{
    return bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

QByteArray storedAccessToken(const QByteArray &token, const QByteArray &expiresAt)
{
    return "{\"token\":\"" + token + "\",\"expiresAt\":\"" + expiresAt + "\"}";
}

QString failureOf(const auto &result)
{
    return result ? QString() : description(AuthError(result.error()));
}

} // namespace

class TestGoogleOAuth final : public QObject
{
    Q_OBJECT

    std::unique_ptr<FakeSecretStore> m_secrets;
    std::unique_ptr<FakeHttpTransport> m_transport;
    std::unique_ptr<FakeUrlOpener> m_opener;
    FixedClock m_clock { now };
    GoogleClient m_client;
    QString m_callback; // what the browser brings; STATE stands for the state that it was given

    AuthServices services(SecretStore &secrets, HttpTransport &transport, UrlOpener &opener)
    {
        return { secrets,  transport,        opener, m_clock, GoogleEndpoints::publicHosts(),
                 m_client, u"test.service"_s };
    }
    std::unique_ptr<GoogleOAuth> account()
    {
        return std::make_unique<GoogleOAuth>(u"A"_s, services(*m_secrets, *m_transport, *m_opener));
    }

    /// What the token endpoint answers from now on; status 0: no answer, -1: an answer without one.
    void answerTokens(int status, const QByteArray &body)
    {
        using Answer = FakeHttpTransport::Answer;
        m_transport = std::make_unique<FakeHttpTransport>();
        m_transport->answer(
            u"/token"_s,
            status == 0
                ? Answer(std::unexpected(TransportError { TransportError::Kind::Network, u"no line"_s }))
                : Answer(HttpResponse { status < 0 ? std::nullopt : std::optional(status), body }));
        m_transport->answer(u"/v1/userinfo"_s, 200, R"({"email":"ada@example.com"})");
        m_transport->answer(u"/revoke"_s, 200, "{}");
    }

private Q_SLOTS:
    void init()
    {
        m_secrets = std::make_unique<FakeSecretStore>();
        m_opener = std::make_unique<FakeUrlOpener>();
        m_opener->onOpen = [this](const QUrl &url) { comeBack(url, m_callback); };
        m_client = { u"id.example"_s, u"client-secret"_s };
        m_callback = u"?code=the%2Fcode&state=STATE"_s;
        answerTokens(200, R"({"access_token":"at","refresh_token":"rt","expires_in":3599})");
    }

    void standsOnAReadableRefreshToken_data()
    {
        QTest::addColumn<QByteArray>("stored"); // null: no item
        QTest::addColumn<int>("status"); // of reading it
        QTest::addColumn<QString>("failure");
        QTest::newRow("token") << "rt"_ba << 0 << QString();
        QTest::newRow("no item") << QByteArray() << 0 << u"Not signed in"_s;
        QTest::newRow("empty") << ""_ba << 0 << u"Not signed in"_s;
        QTest::newRow("not UTF-8") << "\xff"_ba << 0 << u"Keychain item could not be decoded"_s;
        QTest::newRow("dismissed") << "rt"_ba << -128 << u"Keychain OSStatus -128"_s;
    }

    void standsOnAReadableRefreshToken()
    {
        QFETCH(QByteArray, stored);
        QFETCH(int, status);
        QFETCH(QString, failure);
        if (!stored.isNull())
            m_secrets->secrets.insert(refreshItem, stored);
        const auto oauth = account();
        QCOMPARE(oauth->isSignedIn(), stored == "rt");
        QCOMPARE(m_secrets->items, (QList { SecretItem { u"test.service"_s, refreshItem } }));

        if (status != 0)
            m_secrets->failures.insert(u"copyMatching"_s, SecretStatus(status));
        QCOMPARE(failureOf(QCoro::waitFor(oauth->refreshAccessToken())), failure);
        QCOMPARE(m_transport->requests.size(), failure.isEmpty() ? 1 : 0);
        QCOMPARE(m_secrets->secrets.value(refreshItem), stored); // whatever the answer holds
    }

    void comesAliveWhenTheStoreOpens()
    {
        m_secrets->secrets.insert(refreshItem, "rt");
        m_secrets->lock();
        const auto oauth = account();
        QSignalSpy changed(oauth.get(), &GoogleOAuth::isSignedInChanged);
        QVERIFY(!oauth->isSignedIn());
        QCOMPARE(failureOf(QCoro::waitFor(oauth->accessToken())), u"Keychain OSStatus -25308"_s);
        QCOMPARE(m_transport->requests.size(), 0);

        m_secrets->unlock();

        QVERIFY(oauth->isSignedIn());
        QCOMPARE(changed.size(), 1);
        QCOMPARE(QCoro::waitFor(oauth->accessToken()), TokenRefresher::Result(u"at"_s));
    }

    void aTokenThatIsThereAgainSignsIn_data()
    {
        QTest::addColumn<bool>("isGood"); // the access token
        QTest::newRow("with a good access token") << true;
        QTest::newRow("without one") << false;
    }

    void aTokenThatIsThereAgainSignsIn()
    {
        QFETCH(bool, isGood);
        const auto oauth = account();
        QVERIFY(oauth->isSignedOut());
        m_secrets->secrets.insert(refreshItem, "rt"); // a store that shows its items late, and says nothing
        if (isGood)
            m_secrets->secrets.insert(accessItem, storedAccessToken("at", "2025-03-01T09:30:00Z"));
        QCOMPARE(QCoro::waitFor(oauth->accessToken()), TokenRefresher::Result(u"at"_s));
        QVERIFY(oauth->isSignedIn());
    }

    void signsInThroughTheBrowser()
    {
        const auto oauth = account();
        QSignalSpy changed(oauth.get(), &GoogleOAuth::isSignedInChanged);

        const auto signedIn = QCoro::waitFor(oauth->signIn());

        QCOMPARE(failureOf(signedIn), QString());
        QVERIFY(oauth->isSignedIn());
        QCOMPARE(changed.size(), 1);
        QCOMPARE(oauth->accountEmail(), u"ada@example.com"_s);

        const QUrl asked = m_opener->opened.value(0);
        QCOMPARE(asked.adjusted(QUrl::RemoveQuery).toString(),
                 u"https://accounts.google.com/o/oauth2/v2/auth"_s);
        const QUrlQuery query(asked);
        const auto item = [&query](const QString &name) {
            return query.queryItemValue(name, QUrl::FullyDecoded);
        };
        const QString redirect = item(u"redirect_uri"_s);
        const QString challenge = item(u"code_challenge"_s);
        const QString state = item(u"state"_s);
        QCOMPARE(asked.query(QUrl::FullyEncoded),
                 u"client_id=id.example&redirect_uri=%1&response_type=code"
                 "&scope=https://www.googleapis.com/auth/calendar.events.readonly%20"
                 "https://www.googleapis.com/auth/calendar.readonly%20openid%20email&code_challenge=%2"
                 "&code_challenge_method=S256&state=%3&access_type=offline&prompt=consent"
                 "&include_granted_scopes=true"_s.arg(redirect, challenge, state));
        for (const QString &random : { challenge, state })
            QVERIFY(QRegularExpression(u"^[A-Za-z0-9_-]{43}$"_s).match(random).hasMatch());
        QVERIFY(QRegularExpression(u"^http://127\\.0\\.0\\.1:[1-9][0-9]*/callback$"_s)
                    .match(redirect)
                    .hasMatch());

        QCOMPARE(m_transport->requests.size(), 2);
        const HttpRequest exchange = m_transport->requests[0];
        QCOMPARE(exchange.method, "POST"_ba);
        QCOMPARE(exchange.url, QUrl(u"https://oauth2.googleapis.com/token"_s));
        QCOMPARE(exchange.account, u"A"_s);
        const QList<std::pair<QByteArray, QByteArray>> formHeader { { "Content-Type",
                                                                      "application/x-www-form-urlencoded" } };
        QCOMPARE(exchange.headers, formHeader);
        const QString verifier =
            QUrlQuery(QString::fromLatin1(exchange.body)).queryItemValue(u"code_verifier"_s);
        QCOMPARE(verifier.size(), 86);
        QCOMPARE(challenge.toLatin1(),
                 base64Url(QCryptographicHash::hash(verifier.toLatin1(), QCryptographicHash::Sha256)));
        QCOMPARE(exchange.body,
                 "grant_type=authorization_code&code=the/code&code_verifier=" + verifier.toLatin1()
                     + "&client_id=id.example&client_secret=client-secret&redirect_uri="
                     + redirect.toLatin1());

        const HttpRequest userInfo = m_transport->requests[1];
        QCOMPARE(userInfo.url, QUrl(u"https://openidconnect.googleapis.com/v1/userinfo"_s));
        const QList<std::pair<QByteArray, QByteArray>> bearer { { "Authorization", "Bearer at" } };
        QCOMPARE(userInfo.headers, bearer);

        QCOMPARE(m_secrets->secrets.value(refreshItem), "rt"_ba);
        QCOMPARE(AccessToken::fromJson(m_secrets->secrets.value(accessItem)),
                 (AccessToken { u"at"_s, now + 3599s }));

        const auto again = account();
        QVERIFY(QCoro::waitFor(again->signIn()));
        const QUrlQuery other(m_opener->opened.value(1));
        QVERIFY(other.queryItemValue(u"state"_s) != state
                && other.queryItemValue(u"code_challenge"_s) != challenge);
    }

    void signsInWithWhatTheAnswerHolds_data()
    {
        QTest::addColumn<QByteArray>("tokens");
        QTest::addColumn<int>("userInfoStatus");
        QTest::addColumn<QByteArray>("refreshToken");
        QTest::addColumn<int>("lifetime"); // in seconds
        QTest::newRow("empty refresh token, user unknown")
            << R"({"access_token":"at","refresh_token":"","expires_in":100})"_ba << 503 << "old"_ba << 100;
        QTest::newRow("no expiry") << R"({"access_token":"at","refresh_token":"new"})"_ba << 200 << "new"_ba
                                   << 3500;
        QTest::newRow("expiry beyond all dates")
            << R"({"access_token":"at","expires_in":9000000000000000000})"_ba << 200 << "old"_ba << 315360000;
    }

    void signsInWithWhatTheAnswerHolds()
    {
        QFETCH(QByteArray, tokens);
        QFETCH(int, userInfoStatus);
        QFETCH(int, lifetime);
        m_transport = std::make_unique<FakeHttpTransport>();
        m_transport->answer(u"/token"_s, 200, tokens);
        m_transport->answer(u"/v1/userinfo"_s, userInfoStatus, R"({"email":"ada@example.com"})");
        m_secrets->secrets.insert(refreshItem, "old");
        const auto oauth = account();

        QCOMPARE(failureOf(QCoro::waitFor(oauth->signIn())), QString());

        QTEST(m_secrets->secrets.value(refreshItem), "refreshToken");
        QCOMPARE(AccessToken::fromJson(m_secrets->secrets.value(accessItem))->expiresAt,
                 now + std::chrono::seconds(lifetime));
        QCOMPARE(oauth->accountEmail().has_value(), userInfoStatus == 200);
        QVERIFY(oauth->isSignedIn());
    }

    void failsToSignIn_data()
    {
        QTest::addColumn<QString>("callback");
        QTest::addColumn<int>("status"); // 0: no answer, -1: an answer without one
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("failure"); // the beginning of its description
        QTest::addColumn<int>("exchanges");
        const QString good = u"?code=c&state=STATE"_s;
        const QByteArray tokens = R"({"access_token":"at","refresh_token":"rt"})";

        for (const QString &callback :
             { u"?code=c&state=x"_s, u"?code=c&state=STATEx"_s, u"?code=c&state="_s })
            QTest::addRow("state of %s", qPrintable(callback))
                << callback << 200 << tokens << u"OAuth state mismatch"_s << 0;
        QTest::newRow("denied") << u"?error=access_denied&state=STATE"_s << 200 << tokens
                                << u"malformedRequest"_s << 0;

        QTest::newRow("refused") << good << 400 << R"({"error":"invalid_grant %1"})"_ba
                                 << u"Token exchange failed (400): {\"error\":\"invalid_grant %1\"}"_s << 1;
        QTest::newRow("not HTTP") << good << -1 << "\xff"_ba << u"Token exchange failed (-1): "_s << 1;
        QTest::newRow("no network") << good << 0 << ""_ba << u"no line"_s << 1;
        QTest::newRow("no JSON") << good << 200 << "<html>"_ba << u"Not JSON at byte"_s << 1;
        QTest::newRow("no access token") << good << 200 << "{}"_ba << u"\"access_token\" is missing"_s << 1;

        QTest::newRow("no browser") << good << 200 << tokens << u"Could not open browser"_s << 0;
        QTest::newRow("no client") << good << 200 << tokens
                                   << u"Token exchange failed (-1): Kestrel has no Google client"_s << 0;
        QTest::newRow("locked store") << good << 200 << tokens << u"Keychain OSStatus -25308"_s << 1;
    }

    void failsToSignIn()
    {
        QFETCH(QString, callback);
        QFETCH(int, status);
        QFETCH(QByteArray, answer);
        QFETCH(QString, failure);
        const QByteArray obstacle = QTest::currentDataTag();
        answerTokens(status, answer);
        m_callback = callback;
        m_opener->succeeds = obstacle != "no browser";
        if (obstacle == "no client")
            m_client.secret.clear();
        const auto oauth = account();
        if (obstacle == "locked store")
            m_secrets->lock();

        const auto signedIn = QCoro::waitFor(oauth->signIn());

        QVERIFY(!signedIn);
        QVERIFY2(failureOf(signedIn).startsWith(failure), qPrintable(failureOf(signedIn)));
        QTEST(m_transport->requestsTo(u"/token"_s), "exchanges");
        QVERIFY(!oauth->isSignedIn());
        QVERIFY(m_secrets->secrets.isEmpty());
        QCOMPARE(m_opener->opened.size(), obstacle == "no client" ? 0 : 1);
    }

    void encodesReservedCharacters()
    {
        const QString token = u"aZ09!$'()*,-./:@_~ +&=%2F\"#?\n€"_s;
        m_secrets->secrets.insert(refreshItem, token.toUtf8());
        const auto oauth = account();

        QVERIFY(QCoro::waitFor(oauth->accessToken()));
        QVERIFY(QCoro::waitFor(oauth->signOut()));

        QCOMPARE(m_transport->requests.value(0).body,
                 "client_id=id.example&client_secret=client-secret&refresh_token="
                 "aZ09!$'()*,-./:@_~%20%2B%26%3D%252F%22%23%3F%0A%E2%82%AC&grant_type=refresh_token"_ba);
        const QUrl revocation = m_transport->requests.value(1).url;
        QCOMPARE(QUrlQuery(revocation).queryItemValue(u"token"_s, QUrl::FullyDecoded), token);
        QVERIFY2(!revocation.query(QUrl::FullyEncoded).contains(u'+'), "a plus sign may be read as a space");
    }

    void givesTheStoredTokenWhileItIsGood_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QString>("token");
        const QString renewed = u"at"_s;
        QTest::newRow("61 seconds left") << storedAccessToken("old", "2025-03-01T09:01:01Z") << u"old"_s;
        QTest::newRow("60 seconds left") << storedAccessToken("old", "2025-03-01T09:01:00Z") << renewed;
        QTest::newRow("unreadable") << "{"_ba << renewed;
    }

    void givesTheStoredTokenWhileItIsGood()
    {
        QFETCH(QByteArray, stored);
        QFETCH(QString, token);
        m_secrets->secrets = { { refreshItem, "mine" }, { accessItem, stored } };
        const auto oauth = account();

        const auto got = QCoro::waitFor(oauth->accessToken());

        QCOMPARE(got, TokenRefresher::Result(token));
        const bool isRenewed = token == "at"_L1;
        QCOMPARE(m_transport->requestsTo(u"/token"_s), isRenewed ? 1 : 0);
        if (isRenewed)
            QCOMPARE(AccessToken::fromJson(m_secrets->secrets.value(accessItem)),
                     (AccessToken { u"at"_s, now + 3599s }));
        // the answer's refresh token is not the one to keep
        QCOMPARE(m_secrets->secrets.value(refreshItem), "mine"_ba);
        QCOMPARE(QCoro::waitFor(oauth->refreshAccessToken()), TokenRefresher::Result(u"at"_s));
    }

    void sharesOneRefreshAmongCallers()
    {
        m_secrets->secrets.insert(refreshItem, "rt");
        m_transport = std::make_unique<FakeHttpTransport>();
        m_transport->answer(u"/token"_s, 503, "later");
        m_transport->answer(u"/token"_s, 200, R"({"access_token":"at","expires_in":30})");
        const auto oauth = account();

        for (const QString &expected : { u"Refresh failed (503): later"_s, QString() }) {
            m_transport->hold();
            const int before = m_transport->requestsTo(u"/token"_s);
            QList<std::shared_ptr<std::optional<TokenRefresher::Result>>> callers;
            for (int i = 0; i < 10; ++i)
                callers.append(started(i % 2 ? oauth->accessToken() : oauth->refreshAccessToken()));
            QCoreApplication::processEvents();
            QCOMPARE(m_transport->requestsTo(u"/token"_s), before + 1);
            m_transport->release();
            for (const auto &caller : callers) {
                QTRY_VERIFY(*caller);
                QCOMPARE(failureOf(**caller), expected);
                QCOMPARE((*caller)->value_or(QString()), expected.isEmpty() ? u"at"_s : QString());
            }
        }
    }

    void failsToRefresh_data()
    {
        QTest::addColumn<int>("status"); // 0: no answer
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("failure"); // the beginning of its description
        QTest::addColumn<bool>("staysSignedIn");
        QTest::newRow("400") << 400 << "gone"_ba << u"Refresh failed (400): gone"_s << false;
        QTest::newRow("401") << 401 << "\xff"_ba << u"Refresh failed (401): "_s << false;
        QTest::newRow("503") << 503 << "later"_ba << u"Refresh failed (503): later"_s << true;
        QTest::newRow("no network") << 0 << ""_ba << u"no line"_s << true;
        QTest::newRow("no JSON") << 200 << "["_ba << u"Not JSON"_s << true;
    }

    void failsToRefresh()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, failure);
        QFETCH(bool, staysSignedIn);
        const QMap<QString, QByteArray> stored { { refreshItem, "rt" }, { accessItem, "{}" } };
        m_secrets->secrets = stored;
        answerTokens(status, body);
        const auto oauth = account();
        QSignalSpy changed(oauth.get(), &GoogleOAuth::isSignedInChanged);

        const auto got = QCoro::waitFor(oauth->accessToken());

        QVERIFY(!got);
        QVERIFY2(failureOf(got).startsWith(failure), qPrintable(failureOf(got)));
        QCOMPARE(oauth->isSignedIn(), staysSignedIn);
        QCOMPARE(changed.size(), staysSignedIn ? 0 : 1);
        QCOMPARE(m_secrets->secrets, staysSignedIn ? stored : (QMap<QString, QByteArray>()));
    }

    void signsOut_data()
    {
        QTest::addColumn<QString>("failing"); // the store's call that fails
        QTest::addColumn<bool>("isRevoked");
        QTest::addColumn<QString>("failure");
        QTest::newRow("whatever Google says") << QString() << true << QString();
        QTest::newRow("unreadable") << u"copyMatching"_s << false << QString();
        QTest::newRow("undeletable") << u"remove"_s << true << u"Keychain OSStatus -50"_s;
    }

    void signsOut()
    {
        QFETCH(QString, failing);
        QFETCH(bool, isRevoked);
        QFETCH(QString, failure);
        m_secrets->secrets = { { refreshItem, "rt" }, { accessItem, "{}" } };
        m_transport = std::make_unique<FakeHttpTransport>();
        m_transport->answer(u"/revoke"_s, 500, "whatever");
        const auto oauth = account();
        if (!failing.isEmpty())
            m_secrets->failures.insert(failing, SecretStatus::Failed);

        QCOMPARE(failureOf(QCoro::waitFor(oauth->signOut())), failure);

        QCOMPARE(oauth->isSignedIn(), !failure.isEmpty());
        QCOMPARE(m_secrets->secrets.isEmpty(), failure.isEmpty());
        QCOMPARE(m_transport->requests.size(), isRevoked ? 1 : 0);
        if (isRevoked) {
            QCOMPARE(m_transport->requests[0].method, "POST"_ba);
            QCOMPARE(m_transport->requests[0].url, QUrl(u"https://oauth2.googleapis.com/revoke?token=rt"_s));
        }
    }

    void keepsNoTokenThatComesAfterSigningOut()
    {
        m_secrets->secrets.insert(refreshItem, "rt");
        const auto oauth = account();
        m_transport->hold();
        const auto token = started(oauth->accessToken());
        const auto signedOut = started(oauth->signOut());
        QTRY_COMPARE(m_transport->requests.size(), 2);

        m_transport->release(u"/revoke"_s);
        QTRY_VERIFY(*signedOut);
        m_transport->release();

        QTRY_VERIFY(*token);
        QCOMPARE(failureOf(**token), u"Not signed in"_s);
        QVERIFY(m_secrets->secrets.isEmpty());
    }

    void mayGoAtEveryStep_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<int>("tokenStatus");
        QTest::addColumn<int>("steps"); // that it takes to its end
        QTest::newRow("access token") << u"accessToken"_s << 200 << 5;
        QTest::newRow("refused refresh") << u"accessToken"_s << 400 << 5;
        QTest::newRow("user info") << u"fetchUserInfo"_s << 200 << 6;
        QTest::newRow("sign-in") << u"signIn"_s << 200 << 7;
        QTest::newRow("sign-out") << u"signOut"_s << 200 << 4;
    }

    void mayGoAtEveryStep()
    {
        QFETCH(QString, operation);
        QFETCH(int, tokenStatus);
        QFETCH(int, steps);
        for (int step = 0; step <= steps; ++step) {
            init();
            answerTokens(tokenStatus, R"({"access_token":"at","refresh_token":"rt"})");
            m_secrets->secrets = { { refreshItem, "rt" } };
            Gate gate;
            StepwiseSecretStore secrets(*m_secrets, gate);
            StepwiseTransport transport(*m_transport, gate);
            StepwiseOpener opener(*m_opener, gate);
            auto oauth = std::make_unique<GoogleOAuth>(u"A"_s, services(secrets, transport, opener));
            QCOMPARE(gate.waiting(), 1); // the first read, which is no step of the operation
            gate.step();
            QTRY_VERIFY(oauth->isSignedIn());

            const auto failure = std::make_shared<std::optional<QString>>(); // an empty text: none
            const auto run = [&](auto task) {
                return [](auto pending, auto result) -> QCoro::Task<void> {
                    *result = failureOf(co_await pending);
                }(std::move(task), failure);
            };
            if (operation == "accessToken"_L1)
                run(oauth->accessToken());
            else if (operation == "fetchUserInfo"_L1)
                run(oauth->fetchUserInfo());
            else if (operation == "signIn"_L1)
                run(oauth->signIn());
            else
                run(oauth->signOut());
            for (int done = 0; done < step; ++done) {
                QTRY_COMPARE(gate.waiting(), 1);
                gate.step();
            }
            if (step < steps)
                QTRY_COMPARE(gate.waiting(), 1);
            else
                QTRY_VERIFY(*failure);
            QCOMPARE(failure->has_value(), step == steps);

            oauth.reset();
            gate.open();

            QTRY_VERIFY(*failure);
            if (operation == "signOut"_L1) {
                QCOMPARE(**failure, QString());
                QVERIFY(m_secrets->secrets.isEmpty());
            } else if (step < steps) {
                QCOMPARE(**failure, u"Not signed in"_s);
            }
        }
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestGoogleOAuth)

#include "TestGoogleOAuth.moc"
