#include "platform/SecretText.h"
#include "platform/linux/SecretServiceStore.h"
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <csignal>

// Runs under tests/support/with-keyring: what is locked and killed here is the test's own keyring.

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const SecretItem first { u"app.example"_s, u"google.1.refresh_token"_s };
const SecretItem second { u"app.example"_s, u"google.2.refresh_token"_s };

const QString serviceName = u"org.freedesktop.secrets"_s;

bool isKeyringThere()
{
    return QDBusConnection::sessionBus().interface()->isServiceRegistered(serviceName);
}

} // namespace

class TestSecretServiceStore final : public QObject
{
    Q_OBJECT

private:
    QProcess m_keyring; ///< in the place of the wrapper's, once that was killed

    void killKeyring()
    {
        const uint process = QDBusConnection::sessionBus().interface()->servicePid(serviceName);
        QVERIFY(process > 0);
        QCOMPARE(::kill(static_cast<pid_t>(process), SIGKILL), 0);
        QTRY_VERIFY(!isKeyringThere());
        if (m_keyring.state() != QProcess::NotRunning)
            QVERIFY(m_keyring.waitForFinished());
    }

    void startKeyring()
    {
        m_keyring.start(u"gnome-keyring-daemon"_s,
                        { u"--foreground"_s, u"--unlock"_s, u"--components=secrets"_s });
        QVERIFY(m_keyring.waitForStarted());
        m_keyring.write("pw");
        m_keyring.closeWriteChannel();
        QTRY_VERIFY(isKeyringThere());
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(qEnvironmentVariable("HOME").contains(u"kestrel-keyring-"), "only under with-keyring");
        QVERIFY(isKeyringThere());
    }

    void cleanupTestCase()
    {
        m_keyring.terminate();
        m_keyring.waitForFinished();
    }

    void withoutABusThereIsNoStore()
    {
        const QByteArray before = qgetenv("DBUS_SESSION_BUS_ADDRESS");
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        SecretServiceStore store;
        const QSignalSpy trouble(&store, &SecretStore::trouble);
        QCOMPARE(secret(store, first), "[-25291]");
        QCOMPARE(QCoro::waitFor(store.add(first, "1")), SecretStatus::Unavailable);
        qputenv("DBUS_SESSION_BUS_ADDRESS", before);
        QTRY_COMPARE(trouble.size(), 1);
        QVERIFY(trouble[0][0].toString().contains(u"gnome-keyring"_s));
        QVERIFY(trouble[0][0].toString().contains(u"--secret-store file"_s));
        // GLib hands a connection that failed out again as long as anybody holds it
        QTRY_COMPARE(secret(store, first), "[-25300]");
    }

    void secretsOfTwoAccountsComeAndGo()
    {
        const QByteArray binary("\x00\xff\n\"{}", 6);
        {
            SecretServiceStore store;
            QCOMPARE(secret(store, first), "[-25300]");
            QCOMPARE(QCoro::waitFor(store.update(first, "1")), SecretStatus::NotFound);
            QCOMPARE(QCoro::waitFor(store.remove(first)), SecretStatus::NotFound);
            QCOMPARE(QCoro::waitFor(store.add(first, "1")), SecretStatus::Success);
            QCOMPARE(QCoro::waitFor(store.add(second, "another")), SecretStatus::Success);
            QCOMPARE(QCoro::waitFor(store.add(second, binary)), SecretStatus::Success);
            QCOMPARE(QCoro::waitFor(store.update(first, "")), SecretStatus::Success);
        }
        SecretServiceStore store;
        QCOMPARE(secret(store, first), "");
        QCOMPARE(secret(store, second), binary);
        QCOMPARE(secret(store, { u"app.other"_s, first.account }), "[-25300]");
        QCOMPARE(QCoro::waitFor(store.remove(first)), SecretStatus::Success);
        QCOMPARE(secret(store, first), "[-25300]");
    }

    void manyAtOnceAllGetTheirOwn()
    {
        SecretServiceStore store;
        constexpr int count = 10;
        for (int i = 0; i < count; ++i)
            QCOMPARE(
                QCoro::waitFor(store.add({ u"app.example"_s, u"many.%1"_s.arg(i) }, QByteArray::number(i))),
                SecretStatus::Success);
        SecretServiceStore fresh; // so that all of them wait for the service
        std::vector<QCoro::Task<QByteArray>> reads;
        reads.reserve(count);
        for (int i = 0; i < count; ++i)
            reads.push_back(read(fresh, { u"app.example"_s, u"many.%1"_s.arg(i) }));
        for (std::size_t i = 0; i < reads.size(); ++i)
            QCOMPARE(QCoro::waitFor(reads[i]), QByteArray::number(i));
    }

    void callsThatTheStoreDoesNotLiveToSeeEndAsFailed()
    {
        auto store = std::make_unique<SecretServiceStore>();
        QCOMPARE(QCoro::waitFor(store->add(first, "1")), SecretStatus::Success);
        auto early = read(*store, first);
        auto write = store->update(first, "2");
        store.reset();
        QCOMPARE(QCoro::waitFor(early), "[-50]");
        QCOMPARE(QCoro::waitFor(write), SecretStatus::Failed);

        store = std::make_unique<SecretServiceStore>();
        auto unconnected = read(*store, first);
        auto another = read(*store, first);
        store.reset();
        QCOMPARE(QCoro::waitFor(unconnected), "[-50]");
        QCOMPARE(QCoro::waitFor(another), "[-50]");
    }

    void aServiceThatDiesAndComesBackIsFoundAgain()
    {
        SecretServiceStore store;
        const QSignalSpy opened(&store, &SecretStore::opened);
        const QSignalSpy trouble(&store, &SecretStore::trouble);
        QCOMPARE(QCoro::waitFor(store.add(first, "1")), SecretStatus::Success);

        killKeyring();
        QCOMPARE(secret(store, first), "[-25291]");
        QCOMPARE(QCoro::waitFor(store.update(first, "2")), SecretStatus::Unavailable);
        QTRY_COMPARE(trouble.size(), 1);
        QCOMPARE(opened.size(), 0);

        startKeyring();
        QTRY_COMPARE(opened.size(), 1);
        QCOMPARE(secret(store, first), "1");

        // nobody asked in between
        killKeyring();
        startKeyring();
        QTRY_COMPARE(opened.size(), 2);
        QCOMPARE(secret(store, first), "1");
        QCOMPARE(trouble.size(), 1);

        // once for each time
        killKeyring();
        QCOMPARE(secret(store, first), "[-25291]");
        QCOMPARE(secret(store, first), "[-25291]");
        QTRY_COMPARE(trouble.size(), 2);
        startKeyring();
        QTRY_COMPARE(opened.size(), 3);
    }

    void theEndOfTheBusIsNotOurs()
    {
        QProcess bus;
        bus.start(u"dbus-daemon"_s,
                  { u"--config-file="_s + QFINDTESTDATA("../support/empty-bus.conf"), u"--nofork"_s,
                    u"--print-address"_s });
        QVERIFY(bus.waitForReadyRead());
        const QByteArray before = qgetenv("DBUS_SESSION_BUS_ADDRESS");
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus.readLine().trimmed());
        SecretServiceStore store;
        const QByteArray withBus = secret(store, first);
        bus.kill();
        QVERIFY(bus.waitForFinished());
        const QByteArray withoutBus = secret(store, first);
        qputenv("DBUS_SESSION_BUS_ADDRESS", before);
        QCOMPARE(withBus, "[-25291]");
        QCOMPARE(withoutBus, "[-25291]");
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestSecretServiceStore)
#include "TestSecretServiceStore.moc"
