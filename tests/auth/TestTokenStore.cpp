#include "auth/Stepwise.h"
#include "auth/TokenStore.h"
#include "support/FakeSecretStore.h"
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

class TestTokenStore final : public QObject
{
    Q_OBJECT

    static TokenStore storeOn(SecretStore &secrets)
    {
        return { Keychain(secrets, u"test.service"_s), u"google.A"_s };
    }

private Q_SLOTS:
    void updatesOrAddsAndDeletesOnce()
    {
        FakeSecretStore secrets;
        const TokenStore store = storeOn(secrets);
        QVERIFY(QCoro::waitFor(store.saveRefreshToken(u"é1"_s)));
        QVERIFY(QCoro::waitFor(store.saveRefreshToken(u"é2"_s)));
        QCOMPARE(QCoro::waitFor(store.loadRefreshToken()).value(), u"é2"_s);
        QVERIFY(QCoro::waitFor(store.deleteRefreshToken()));
        QVERIFY(QCoro::waitFor(store.deleteRefreshToken())); // an absent item is no failure

        const QString item = u" google.A.refresh_token"_s;
        const QStringList calls { u"update"_s + item,       u"add"_s + item,    u"update"_s + item,
                                  u"copyMatching"_s + item, u"remove"_s + item, u"remove"_s + item };
        QCOMPARE(secrets.calls, calls);
    }

    void givesFailuresOfWritingUnchanged_data()
    {
        QTest::addColumn<QStringList>("calls");
        const QString item = u" google.A.refresh_token"_s;
        QTest::newRow("update") << QStringList { u"update"_s + item };
        QTest::newRow("add") << QStringList { u"update"_s + item, u"add"_s + item };
    }

    void givesFailuresOfWritingUnchanged()
    {
        FakeSecretStore secrets;
        secrets.failures.insert(QString::fromLatin1(QTest::currentDataTag()), SecretStatus::Dismissed);

        const auto saved = QCoro::waitFor(storeOn(secrets).saveRefreshToken(u"rt"_s));

        QCOMPARE(saved.error(), (KeychainError { KeychainError::Kind::UnexpectedStatus, -128 }));
        QTEST(secrets.calls, "calls");
    }

    void goesOnWithoutTheStoreObject()
    {
        FakeSecretStore secrets;
        Gate gate;
        StepwiseSecretStore stepwise(secrets, gate);
        auto saving = storeOn(stepwise).saveRefreshToken(u"rt"_s);
        auto loading = storeOn(stepwise).loadAccessToken();
        QCOMPARE(gate.waiting(), 2);

        gate.open();

        QVERIFY(QCoro::waitFor(std::move(saving)));
        QCOMPARE(QCoro::waitFor(std::move(loading)).value(), std::nullopt);
        QCOMPARE(secrets.secrets.value(u"google.A.refresh_token"_s), "rt"_ba);
    }

    void storesWholeSecondsOfAnAccessToken()
    {
        FakeSecretStore secrets;
        const TokenStore store = storeOn(secrets);
        const AccessToken token { u"at \"é\""_s, *parseInternetDateTime(u"2025-03-01T09:30:00.999Z") };

        QVERIFY(QCoro::waitFor(store.saveAccessToken(token)));

        QCOMPARE(QCoro::waitFor(store.loadAccessToken()).value(),
                 (AccessToken { token.token, *parseInternetDateTime(u"2025-03-01T09:30:00Z") }));
    }

    void refusesTextThatIsNoUnicode()
    {
        FakeSecretStore secrets;
        const auto saved = QCoro::waitFor(storeOn(secrets).saveRefreshToken(QString(QChar(0xD800))));

        QCOMPARE(saved.error(), (KeychainError { KeychainError::Kind::DecodingFailed, 0 }));
        QVERIFY(secrets.calls.isEmpty());
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestTokenStore)
#include "TestTokenStore.moc"
