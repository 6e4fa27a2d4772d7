#include "auth/Stepwise.h"
#include "auth/TokenStore.h"
#include "support/FakeSecretStore.h"
#include <QTest>
#include <memory>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

using Failure = std::optional<KeychainError>;

Failure failureOf(const auto &result)
{
    return result ? std::nullopt : Failure(result.error());
}

} // namespace

class TestTokenStore final : public QObject
{
    Q_OBJECT

    std::unique_ptr<FakeSecretStore> m_secrets;

    [[nodiscard]] TokenStore store(const QString &prefix = u"google.A"_s) const
    {
        return { Keychain(*m_secrets, u"test.service"_s), prefix };
    }

private Q_SLOTS:
    void init() { m_secrets = std::make_unique<FakeSecretStore>(); }

    void updatesOrAdds();
    void keepsAccountsApart();
    void givesEveryStatusUnchanged_data();
    void givesEveryStatusUnchanged();
    void goesOnWithoutTheStoreObject();
    void storesWholeSecondsOfAnAccessToken();
    void refusesTextThatIsNoUnicode();
};

void TestTokenStore::updatesOrAdds()
{
    QVERIFY(QCoro::waitFor(store().saveRefreshToken(u"é1"_s)));
    QVERIFY(QCoro::waitFor(store().saveRefreshToken(u"é2"_s)));
    QVERIFY(QCoro::waitFor(store().deleteRefreshToken()));
    QVERIFY(QCoro::waitFor(store().deleteRefreshToken())); // an absent item is no failure

    const QString item = u" google.A.refresh_token"_s;
    const QStringList calls { u"update"_s + item, u"add"_s + item, u"update"_s + item, u"remove"_s + item,
                              u"remove"_s + item };
    QCOMPARE(m_secrets->calls, calls);
    for (const SecretItem &used : std::as_const(m_secrets->items))
        QCOMPARE(used, (SecretItem { u"test.service"_s, u"google.A.refresh_token"_s }));
}

void TestTokenStore::keepsAccountsApart()
{
    QVERIFY(QCoro::waitFor(store(u"google.A"_s).saveRefreshToken(u"é"_s)));

    QCOMPARE(QCoro::waitFor(store(u"google.A"_s).loadRefreshToken()).value(), u"é"_s);
    QCOMPARE(QCoro::waitFor(store(u"google.B"_s).loadRefreshToken()).value(), std::nullopt);
    QCOMPARE(m_secrets->secrets, (QMap<QString, QByteArray> { { u"google.A.refresh_token"_s, "\xc3\xa9" } }));
}

void TestTokenStore::givesEveryStatusUnchanged_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<int>("status");
    for (const int status : { -25308, -25291, -128, -50 }) {
        for (const auto &call : { u"copyMatching"_s, u"update"_s, u"add"_s, u"remove"_s })
            QTest::addRow("%s %d", qPrintable(call), status) << call << status;
    }
}

void TestTokenStore::givesEveryStatusUnchanged()
{
    QFETCH(QString, call);
    QFETCH(int, status);
    m_secrets->failures.insert(call, SecretStatus(status));

    const QList failures { failureOf(QCoro::waitFor(store().loadRefreshToken())),
                           failureOf(QCoro::waitFor(store().saveRefreshToken(u"rt"_s))),
                           failureOf(QCoro::waitFor(store().deleteRefreshToken())) };

    QCOMPARE(failures.count(std::nullopt), 2);
    const KeychainError expected { KeychainError::Kind::UnexpectedStatus, status };
    QVERIFY(failures.contains(Failure(expected)));
    QCOMPARE(expected.description(), u"Keychain OSStatus %1"_s.arg(status));
}

void TestTokenStore::goesOnWithoutTheStoreObject()
{
    Gate gate;
    StepwiseSecretStore secrets(*m_secrets, gate);
    auto saving = TokenStore(Keychain(secrets, u"test.service"_s), u"google.A"_s).saveRefreshToken(u"rt"_s);
    auto loading = TokenStore(Keychain(secrets, u"test.service"_s), u"google.A"_s).loadAccessToken();
    QCOMPARE(gate.waiting(), 2);

    gate.open();

    QVERIFY(QCoro::waitFor(std::move(saving)));
    QCOMPARE(QCoro::waitFor(std::move(loading)).value(), std::nullopt);
    QCOMPARE(m_secrets->secrets.value(u"google.A.refresh_token"_s), "rt"_ba);
}

void TestTokenStore::storesWholeSecondsOfAnAccessToken()
{
    const AccessToken token { u"at \"é\""_s, *parseInternetDateTime(u"2025-03-01T09:30:00.999Z") };

    QVERIFY(QCoro::waitFor(store().saveAccessToken(token)));

    const QByteArray stored = m_secrets->secrets.value(u"google.A.access_token"_s);
    QVERIFY2(stored.contains("\"2025-03-01T09:30:00Z\""), stored);
    const auto loaded = QCoro::waitFor(store().loadAccessToken());
    QVERIFY(loaded);
    QCOMPARE(*loaded, (AccessToken { token.token, *parseInternetDateTime(u"2025-03-01T09:30:00Z") }));
    QVERIFY(QCoro::waitFor(store().deleteAccessToken()));
    QCOMPARE(QCoro::waitFor(store().loadAccessToken()).value(), std::nullopt);
}

void TestTokenStore::refusesTextThatIsNoUnicode()
{
    const auto saved = QCoro::waitFor(store().saveRefreshToken(QString(QChar(0xD800))));

    QCOMPARE(failureOf(saved), (KeychainError { KeychainError::Kind::DecodingFailed, 0 }));
    QVERIFY(m_secrets->calls.isEmpty());
}

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestTokenStore)

#include "TestTokenStore.moc"
