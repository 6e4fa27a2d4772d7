#include "platform/SecretText.h"
#include "platform/linux/FileSecretStore.h"
#include "support/Files.h"
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr auto onlyMine = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;

const SecretItem first { u"app.example"_s, u"google.1.refresh_token"_s };
const SecretItem second { u"app.example"_s, u"google.2.refresh_token"_s };

} // namespace

class TestFileSecretStore final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(u"data/kestrel/secrets.json"_s);
    }

    void secretsOfTwoAccountsComeAndGo()
    {
        const QByteArray binary("\x00\xff\n\"{}", 6);
        {
            FileSecretStore store(m_path);
            QCOMPARE(secret(store, first), "[-25300]");
            QCOMPARE(QCoro::waitFor(store.update(first, "1")), SecretStatus::NotFound);
            QCOMPARE(QCoro::waitFor(store.remove(first)), SecretStatus::NotFound);
            QVERIFY(!QFile::exists(m_folder->filePath(u"data"_s)));

            QCOMPARE(QCoro::waitFor(store.add(first, "1")), SecretStatus::Success);
            QCOMPARE(QCoro::waitFor(store.add(second, binary)), SecretStatus::Success);
            QCOMPARE(QCoro::waitFor(store.update(first, "")), SecretStatus::Success);
        }
        FileSecretStore store(m_path);
        QCOMPARE(secret(store, first), "");
        QCOMPARE(secret(store, second), binary);
        QCOMPARE(secret(store, { u"app.other"_s, first.account }), "[-25300]");
        QCOMPARE(QCoro::waitFor(store.add(second, "again")), SecretStatus::Success);
        QCOMPARE(QCoro::waitFor(store.remove(second)), SecretStatus::Success);
        QCOMPARE(secret(store, second), "[-25300]");
        QCOMPARE(secret(store, first), "");
    }

    void theFileIsNobodyElses()
    {
        const mode_t before = umask(0);
        FileSecretStore store(m_path);
        const SecretStatus added = QCoro::waitFor(store.add(first, "1"));
        umask(before);
        QCOMPARE(added, SecretStatus::Success);
        QCOMPARE(QFile::permissions(m_path), onlyMine);
        QCOMPARE(QFile::permissions(QFileInfo(m_path).path()), onlyMine | QFile::ExeOwner | QFile::ExeUser);

        QFile::setPermissions(m_path, onlyMine | QFile::ReadGroup | QFile::ReadOther);
        QCOMPARE(secret(store, first), "1");
        QCOMPARE(QFile::permissions(m_path), onlyMine);
    }

    void aDamagedFileFailsUntilTheNextSignInAndIsKept_data()
    {
        QTest::addColumn<QByteArray>("content");
        for (const char *content :
             { "{\"items\":[{\"service\":\"a", "[]", "{\"items\":[{\"service\":\"a\",\"account\":\"b\"}]}",
               "{\"items\":[{\"service\":\"a\",\"account\":\"b\",\"secret\":\"*\"}]}" })
            QTest::newRow(content) << QByteArray(content);
    }

    void aDamagedFileFailsUntilTheNextSignInAndIsKept()
    {
        QFETCH(QByteArray, content);
        writeFile(m_path, content);
        FileSecretStore store(m_path);
        const QSignalSpy trouble(&store, &SecretStore::trouble);
        QCOMPARE(secret(store, first), "[-50]");
        QCOMPARE(secret(store, second), "[-50]");
        QCOMPARE(QCoro::waitFor(store.remove(first)), SecretStatus::Failed);
        QCOMPARE(trouble.size(), 1);
        QVERIFY(trouble[0][0].toString().contains(m_path));
        QCOMPARE(contentOf(m_path), content);

        // update, then add: as the keychain does
        QCOMPARE(QCoro::waitFor(store.update(first, "1")), SecretStatus::NotFound);
        QCOMPARE(QCoro::waitFor(store.add(first, "1")), SecretStatus::Success);
        QCOMPARE(secret(store, first), "1");
        QCOMPARE(contentOf(m_path + u".broken"_s), content);
        QCOMPARE(QFile::permissions(m_path + u".broken"_s), onlyMine);
    }

    void whatCannotBeWrittenFailsWithItsReason()
    {
        writeFile(m_folder->filePath(u"data"_s), "a file where the folder should be");
        FileSecretStore store(m_path);
        const QSignalSpy trouble(&store, &SecretStore::trouble);
        QCOMPARE(QCoro::waitFor(store.add(first, "1")), SecretStatus::Failed);
        QCOMPARE(QCoro::waitFor(store.add(first, "1")), SecretStatus::Failed);
        QCOMPARE(trouble.size(), 1);
        QVERIFY(trouble[0][0].toString().contains(m_path));
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestFileSecretStore)
#include "TestFileSecretStore.moc"
