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
    void readsTokenResponses_data()
    {
        QTest::addColumn<QString>("read"); // access token|refresh token|expiry, empty: fails
        QTest::newRow(R"({"access_token":"a","refresh_token":"r","expires_in":3599,"scope":"x"})")
            << u"a|r|3599"_s;
        QTest::newRow(R"({"access_token":"a","refresh_token":null,"expires_in":null,"id_token":{"x":[]}})")
            << u"a|-|-"_s;
        QTest::newRow(R"({"access_token":"a","expires_in":3.6e3})") << u"a|-|3600"_s;
        for (const char *refused :
             { "", R"({"access_token":"a","expires_in":3599.5})",
               R"({"access_token":"a","expires_in":1e300})", R"({"access_token":"a","expires_in":"3599"})",
               R"({"expires_in":1})", R"({"access_token":null})", R"({"access_token":1})",
               R"({"access_token":"a","refresh_token":[]})", R"({"access_token":"a","scope":1})",
               R"({"access_token":"\ud800"})", R"([{"access_token":"a"}])", R"({"access_token":"a"}{})",
               R"({"access_token":"a")", "{\"access_token\":\"\xff\"}" })
            QTest::newRow(refused) << QString();
    }

    void readsTokenResponses()
    {
        const auto response = TokenResponse::fromJson(QTest::currentDataTag());

        const QString read = !response
            ? QString()
            : response->accessToken + u'|' + response->refreshToken.value_or(u"-"_s) + u'|'
                + (response->expiresIn ? QString::number(*response->expiresIn) : u"-"_s);
        QTEST(read, "read");
    }

    void readsUserInfo()
    {
        QCOMPARE(Google::UserInfo::fromJson(R"({"sub":"1","email":"ada@example.com"})").value().email,
                 u"ada@example.com"_s);
        QVERIFY(!Google::UserInfo::fromJson("{}").value().email);
        QVERIFY(!Google::UserInfo::fromJson(R"({"email":"ada@example.com","name":false})"));
    }

    void readsStoredAccessTokens_data()
    {
        QTest::addColumn<bool>("isGood");
        const AccessToken written { u"t"_s, *parseInternetDateTime(u"2025-03-01T09:30:00.999Z") };
        QTest::newRow(written.toJson().constData()) << true;
        for (const char *bad : { "1//abc", R"({"token":"t"})", R"({"expiresAt":"2025-03-01T09:30:00Z"})",
                                 R"({"token":"t","expiresAt":"2025-03-01T09:30:00.5Z"})",
                                 R"({"token":"t","expiresAt":"2025-03-01T09:30:00"})",
                                 R"({"token":"t","expiresAt":1740821400})" })
            QTest::newRow(bad) << false;
    }

    void readsStoredAccessTokens()
    {
        const auto token = AccessToken::fromJson(QTest::currentDataTag());

        QTEST(token.has_value(), "isGood");
        if (token)
            QCOMPARE(*token, (AccessToken { u"t"_s, *parseInternetDateTime(u"2025-03-01T09:30:00Z") }));
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestJsonRecords)
#include "TestJsonRecords.moc"
