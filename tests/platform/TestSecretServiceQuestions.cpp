#include "platform/SecretText.h"
#include "platform/linux/SecretServiceStore.h"
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

// What a person is asked, and what follows from the answers: secret_service.py plays the service and the
// person.

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const SecretItem present { u"app.example"_s, u"google.1.refresh_token"_s };
const SecretItem absent { u"app.example"_s, u"google.2.refresh_token"_s };

/// Steers the service.
QVariant steer(const QString &method, const QVariantList &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        u"org.freedesktop.secrets"_s, u"/org/freedesktop/secrets"_s, u"org.freedesktop.DBus.Mock"_s, method);
    message.setArguments(arguments);
    const QDBusMessage reply = QDBusConnection::sessionBus().call(message);
    if (reply.type() != QDBusMessage::ReplyMessage)
        qFatal("%s: %s", qPrintable(method), qPrintable(reply.errorMessage()));
    return reply.arguments().value(0);
}

} // namespace

class TestSecretServiceQuestions final : public QObject
{
    Q_OBJECT

private:
    QProcess m_service;

    void startService()
    {
        m_service.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_service.start(
            u"/usr/bin/python3"_s,
            { u"-m"_s, u"dbusmock"_s, u"--session"_s, u"--template"_s, QFINDTESTDATA("secret_service.py") });
        QVERIFY(m_service.waitForStarted());
        auto *bus = QDBusConnection::sessionBus().interface();
        QTRY_VERIFY_WITH_TIMEOUT(bus->isServiceRegistered(u"org.freedesktop.secrets"_s), 20000);
    }

    void stopService()
    {
        m_service.kill();
        QVERIFY(m_service.waitForFinished());
        auto *bus = QDBusConnection::sessionBus().interface();
        QTRY_VERIFY(!bus->isServiceRegistered(u"org.freedesktop.secrets"_s));
    }

private Q_SLOTS:
    void initTestCase()
    {
        auto *bus = QDBusConnection::sessionBus().interface();
        QVERIFY(bus);
        QVERIFY2(!bus->isServiceRegistered(u"org.freedesktop.secrets"_s), "only on a bus of its own");
    }

    void init()
    {
        startService();
        SecretServiceStore store;
        QCOMPARE(QCoro::waitFor(store.add(present, "1")), SecretStatus::Success);
        QCOMPARE(secret(store, present), "1");
        QCOMPARE(secret(store, absent), "[-25300]");
    }
    void cleanup() { stopService(); }

    void aLockIsAskedAboutOnceAndNobodyWaits_data()
    {
        QTest::addColumn<QString>("trait");
        QTest::newRow("a service that says all") << QString();
        QTest::newRow("a locked collection that hides its items") << u"hides_locked_items"_s;
    }

    void aLockIsAskedAboutOnceAndNobodyWaits()
    {
        QFETCH(QString, trait);
        if (!trait.isEmpty())
            steer(u"SetTrait"_s, { trait, true });
        steer(u"SetLocked"_s, { true });
        SecretServiceStore store;
        const QSignalSpy opened(&store, &SecretStore::opened);
        auto one = read(store, present);
        auto two = read(store, present);
        auto three = store.update(present, "2");
        auto four = store.remove(present);
        // the question stands open meanwhile
        QCOMPARE(QCoro::waitFor(one), "[-25308]");
        QCOMPARE(QCoro::waitFor(two), "[-25308]");
        QCOMPARE(QCoro::waitFor(three), SecretStatus::Locked);
        QCOMPARE(QCoro::waitFor(four), SecretStatus::Locked);
        QCOMPARE(QCoro::waitFor(store.add(absent, "2")), SecretStatus::Locked);
        QTRY_COMPARE(steer(u"Prompts"_s), 1);
        QCOMPARE(secret(store, absent), "[-25308]");

        steer(u"SetAnswer"_s, { u"accept"_s });
        QTRY_COMPARE(opened.size(), 1);
        QCOMPARE(secret(store, present), "1");
        QCOMPARE(secret(store, absent), "[-25300]");
        QCOMPARE(steer(u"Prompts"_s), 1);
        QCOMPARE(opened.size(), 1);
    }

    void whoSaysNoIsAskedAgainAfterTheNextLockingOnly()
    {
        steer(u"SetLocked"_s, { true });
        steer(u"SetAnswer"_s, { u"dismiss"_s });
        SecretServiceStore store;
        const QSignalSpy opened(&store, &SecretStore::opened);
        QCOMPARE(secret(store, present), "[-25308]");
        QTRY_COMPARE(steer(u"Prompts"_s), 1);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(secret(store, present), "[-25308]");
        QCOMPARE(steer(u"Prompts"_s), 1);
        QCOMPARE(opened.size(), 0);

        steer(u"SetTrait"_s, { u"says_properties"_s, false }); // an unlocking may be announced without them
        steer(u"SetLocked"_s, { false });
        QTRY_COMPARE(opened.size(), 1);
        QCOMPARE(secret(store, present), "1");
        steer(u"SetTrait"_s, { u"says_properties"_s, true });
        steer(u"SetLocked"_s, { true });
        QCOMPARE(secret(store, present), "[-25308]");
        QTRY_COMPARE(steer(u"Prompts"_s), 2);
    }

    void itemsOfAnOpenCollectionMayBeAskedForOneByOne()
    {
        SecretServiceStore store;
        QCOMPARE(QCoro::waitFor(store.add(absent, "2")), SecretStatus::Success);
        steer(u"SetTrait"_s, { u"asks_for_items"_s, true });
        const QSignalSpy opened(&store, &SecretStore::opened);
        steer(u"SetAnswer"_s, { u"dismiss"_s });
        QCOMPARE(secret(store, present), "[-25308]");
        QTRY_COMPARE(steer(u"Prompts"_s), 1);
        QCOMPARE(opened.size(), 0);

        steer(u"SetAnswer"_s, { u"accept"_s });
        QCOMPARE(secret(store, absent), "[-25308]");
        QTRY_COMPARE(opened.size(), 1);
        QCOMPARE(secret(store, absent), "2");
        QCOMPARE(secret(store, present), "[-25308]");
        QCOMPARE(steer(u"Prompts"_s), 2);
    }

    void aNewServiceMayAskAgain()
    {
        steer(u"SetLocked"_s, { true });
        steer(u"SetAnswer"_s, { u"dismiss"_s });
        SecretServiceStore store;
        const QSignalSpy opened(&store, &SecretStore::opened);
        QCOMPARE(secret(store, present), "[-25308]");
        QTRY_COMPARE(steer(u"Prompts"_s), 1);
        stopService();
        startService();
        QTRY_COMPARE(opened.size(), 1);
        steer(u"SetLocked"_s, { true });
        QCOMPARE(secret(store, absent), "[-25308]");
        QTRY_COMPARE(steer(u"Prompts"_s), 1);
    }

    void aServiceThatIsOutOfOrderForAWhileIsToldOnceAndOpens()
    {
        steer(u"SetTrait"_s, { u"refuses_sessions"_s, true });
        SecretServiceStore store;
        const QSignalSpy opened(&store, &SecretStore::opened);
        const QSignalSpy trouble(&store, &SecretStore::trouble);
        QCOMPARE(secret(store, present), "[-25291]");
        QCOMPARE(secret(store, present), "[-25291]");
        QTRY_COMPARE(trouble.size(), 1);
        QVERIFY(trouble[0][0].toString().contains(u"(out of order)"_s));
        QCOMPARE(opened.size(), 0);
        steer(u"SetTrait"_s, { u"refuses_sessions"_s, false });
        QCOMPARE(secret(store, present), "1");
        QTRY_COMPARE(opened.size(), 1);
    }

    void aFirstCollectionIsCreatedForAWriteAlone()
    {
        steer(u"RemoveDefault"_s);
        SecretServiceStore store;
        QCOMPARE(secret(store, absent), "[-25300]");
        QCOMPARE(QCoro::waitFor(store.update(absent, "2")), SecretStatus::NotFound);
        QCOMPARE(steer(u"Prompts"_s), 0);

        steer(u"SetAnswer"_s, { u"dismiss"_s });
        QCOMPARE(QCoro::waitFor(store.add(absent, "2")), SecretStatus::Dismissed);
        steer(u"SetAnswer"_s, { u"accept"_s });
        QCOMPARE(QCoro::waitFor(store.add(absent, "2")), SecretStatus::Success);
        QCOMPARE(steer(u"Prompts"_s), 2);
        QCOMPARE(secret(store, absent), "2");
    }

    void aQuestionAboutAWriteMayBeRefused()
    {
        steer(u"SetTrait"_s, { u"asks_on_write"_s, true });
        steer(u"SetAnswer"_s, { u"dismiss"_s });
        SecretServiceStore store;
        QCOMPARE(QCoro::waitFor(store.remove(present)), SecretStatus::Dismissed);
        QCOMPARE(secret(store, present), "1");
        QCOMPARE(QCoro::waitFor(store.add(absent, "2")), SecretStatus::Dismissed);
        QCOMPARE(secret(store, absent), "[-25300]");
        steer(u"SetAnswer"_s, { u"accept"_s });
        QCOMPARE(QCoro::waitFor(store.remove(present)), SecretStatus::Success);
        QCOMPARE(secret(store, present), "[-25300]");
        QCOMPARE(QCoro::waitFor(store.add(absent, "2")), SecretStatus::Success);
        QCOMPARE(secret(store, absent), "2");
    }

    void aServiceThatDiesOverItsQuestionEndsTheWait()
    {
        steer(u"SetTrait"_s, { u"asks_on_write"_s, true });
        SecretServiceStore store;
        auto write = store.add(absent, "2");
        QTRY_COMPARE(steer(u"Prompts"_s), 1);
        stopService();
        QCOMPARE(QCoro::waitFor(write), SecretStatus::Unavailable);
        startService();
    }

    void theStoreMayGoWhileTheQuestionStandsOpen()
    {
        steer(u"SetLocked"_s, { true });
        auto store = std::make_unique<SecretServiceStore>();
        QCOMPARE(secret(*store, present), "[-25308]");
        QTRY_COMPARE(steer(u"Prompts"_s), 1);
        auto write = store->update(present, "2");
        store.reset();
        QCOMPARE(QCoro::waitFor(write), SecretStatus::Failed);
        steer(u"SetAnswer"_s, { u"accept"_s });
        SecretServiceStore next;
        QTRY_COMPARE(secret(next, present), "1");
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestSecretServiceQuestions)
#include "TestSecretServiceQuestions.moc"
