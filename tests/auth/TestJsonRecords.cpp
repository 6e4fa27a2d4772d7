#include "auth/TokenResponse.h"
#include "auth/TokenStore.h"
#include "auth/UserInfo.h"
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

/// The small JSON answers of sign-in: what is taken, and what fails as a whole.
class TestJsonRecords final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTokenResponses_data();
    void readsTokenResponses();
    void readsUserInfo_data();
    void readsUserInfo();
    void readsStoredAccessTokens_data();
    void readsStoredAccessTokens();
};

void TestJsonRecords::readsTokenResponses_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("read"); // access token|refresh token|expiry, empty: fails
    QTest::newRow("all")
        << R"({"access_token":"a","refresh_token":"r","expires_in":3599,"token_type":"Bearer","scope":"x"})"_ba
        << u"a|r|3599"_s;
    QTest::newRow("least") << R"({"access_token":"a"})"_ba << u"a|-|-"_s;
    QTest::newRow("nulls") << R"({"access_token":"a","refresh_token":null,"expires_in":null,"scope":null})"_ba
                           << u"a|-|-"_s;
    QTest::newRow("more members") << R"({"id_token":{"x":[]},"access_token":"a"})"_ba << u"a|-|-"_s;
    QTest::newRow("whole number with a fraction")
        << R"({"access_token":"a","expires_in":3599.0})"_ba << u"a|-|3599"_s;
    QTest::newRow("whole number with an exponent")
        << R"({"access_token":"a","expires_in":3.6e3})"_ba << u"a|-|3600"_s;
    QTest::newRow("negative") << R"({"access_token":"a","expires_in":-1})"_ba << u"a|-|-1"_s;
    QTest::newRow("half a second") << R"({"access_token":"a","expires_in":3599.5})"_ba << QString();
    QTest::newRow("beyond 64 bits") << R"({"access_token":"a","expires_in":1e300})"_ba << QString();
    QTest::newRow("expiry as text") << R"({"access_token":"a","expires_in":"3599"})"_ba << QString();
    QTest::newRow("expiry as flag") << R"({"access_token":"a","expires_in":true})"_ba << QString();
    QTest::newRow("no access token") << R"({"expires_in":1})"_ba << QString();
    QTest::newRow("null access token") << R"({"access_token":null})"_ba << QString();
    QTest::newRow("number as access token") << R"({"access_token":1})"_ba << QString();
    QTest::newRow("list as refresh token") << R"({"access_token":"a","refresh_token":[]})"_ba << QString();
    QTest::newRow("number as unused member") << R"({"access_token":"a","scope":1})"_ba << QString();
    QTest::newRow("half a surrogate pair") << R"({"access_token":"\ud800"})"_ba << QString();
    QTest::newRow("list") << R"([{"access_token":"a"}])"_ba << QString();
    QTest::newRow("two values") << R"({"access_token":"a"}{})"_ba << QString();
    QTest::newRow("cut off") << R"({"access_token":"a")"_ba << QString();
    QTest::newRow("not UTF-8") << "{\"access_token\":\"\xff\"}"_ba << QString();
    QTest::newRow("nothing") << ""_ba << QString();
}

void TestJsonRecords::readsTokenResponses()
{
    QFETCH(QByteArray, json);

    const auto response = TokenResponse::fromJson(json);

    const QString read = !response ? QString()
                                   : response->accessToken + u'|' + response->refreshToken.value_or(u"-"_s)
            + u'|' + (response->expiresIn ? QString::number(*response->expiresIn) : u"-"_s);
    QTEST(read, "read");
    if (!response)
        QVERIFY(!response.error().description.isEmpty());
}

void TestJsonRecords::readsUserInfo_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("read"); // e-mail|name, empty: fails
    QTest::newRow("both") << R"({"sub":"1","email":"ada@example.com","name":"Ada"})"_ba
                          << u"ada@example.com|Ada"_s;
    QTest::newRow("neither") << "{}"_ba << u"-|-"_s;
    QTest::newRow("null") << R"({"email":null})"_ba << u"-|-"_s;
    QTest::newRow("flag as name") << R"({"email":"ada@example.com","name":false})"_ba << QString();
    QTest::newRow("text") << R"("ada@example.com")"_ba << QString();
}

void TestJsonRecords::readsUserInfo()
{
    QFETCH(QByteArray, json);

    const auto user = Google::UserInfo::fromJson(json);

    QTEST(!user ? QString() : user->email.value_or(u"-"_s) + u'|' + user->name.value_or(u"-"_s), "read");
}

void TestJsonRecords::readsStoredAccessTokens_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<bool>("isGood");
    QTest::newRow("good") << R"({"token":"t","expiresAt":"2025-03-01T09:30:00Z"})"_ba << true;
    QTest::newRow("other order") << R"({"expiresAt":"2025-03-01T09:30:00Z","token":"t"})"_ba << true;
    QTest::newRow("no expiry") << R"({"token":"t"})"_ba << false;
    QTest::newRow("no token") << R"({"expiresAt":"2025-03-01T09:30:00Z"})"_ba << false;
    QTest::newRow("fraction of a second")
        << R"({"token":"t","expiresAt":"2025-03-01T09:30:00.5Z"})"_ba << false;
    QTest::newRow("no zone") << R"({"token":"t","expiresAt":"2025-03-01T09:30:00"})"_ba << false;
    QTest::newRow("impossible day") << R"({"token":"t","expiresAt":"2025-02-30T09:30:00Z"})"_ba << false;
    QTest::newRow("number") << R"({"token":"t","expiresAt":1740821400})"_ba << false;
    QTest::newRow("refresh token's bytes") << "1//abc"_ba << false;
}

void TestJsonRecords::readsStoredAccessTokens()
{
    QFETCH(QByteArray, json);

    const auto token = AccessToken::fromJson(json);

    QTEST(token.has_value(), "isGood");
    if (token)
        QCOMPARE(*token, (AccessToken { u"t"_s, *parseInternetDateTime(u"2025-03-01T09:30:00Z") }));
}

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestJsonRecords)

#include "TestJsonRecords.moc"
