#include "platform/linux/IniPreferenceStore.h"
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLockFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr auto privateFile = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
constexpr auto privateFolder = privateFile | QFile::ExeOwner | QFile::ExeUser;

void put(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("the test cannot write %s", qPrintable(path));
}

/// As editors do it that write beside the file and rename.
void replace(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit())
        qFatal("the test cannot replace %s", qPrintable(path));
}

QByteArray get(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

} // namespace

class TestIniPreferenceStore final : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir *m_folder = nullptr;

    [[nodiscard]] QString path(const QString &name = u"kestrel.ini"_s) const
    {
        return m_folder->filePath(name);
    }

    void startWriter(QProcess &process, const QStringList &arguments)
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QStringLiteral(PREFERENCE_WRITER), arguments);
        QVERIFY(process.waitForStarted());
    }

private Q_SLOTS:
    void init() { m_folder = new QTemporaryDir; }
    void cleanup()
    {
        delete m_folder;
        m_folder = nullptr;
    }

    void onlyAChangeCreatesTheFileAndItsFolder()
    {
        const QString file = path(u"config/kestrel/kestrel.ini"_s);
        IniPreferenceStore store(file);
        QVERIFY(!store.integer(u"k"_s));
        store.remove(u"k"_s);
        QVERIFY(!QFile::exists(path(u"config"_s)));

        store.setInteger(u"k"_s, 1);
        QCOMPARE(get(file), "[General]\nk=1\n");
        QCOMPARE(QFile::permissions(file), privateFile);
        QCOMPARE(QFile::permissions(path(u"config/kestrel"_s)), privateFolder);
        QCOMPARE(QFile::permissions(path(u"config"_s)), privateFolder);
    }

    void aLinkedFileStaysLinkedAndKeepsItsPermissions()
    {
        QVERIFY(QDir(m_folder->path()).mkdir(u"dotfiles"_s));
        const QString target = path(u"dotfiles/kestrel.ini"_s);
        put(target, "; mine\n");
        QFile::setPermissions(target, privateFile | QFile::ReadGroup);
        QVERIFY(QFile::link(u"dotfiles/kestrel.ini"_s, path(u"link"_s)));
        QVERIFY(QFile::link(u"link"_s, path()));
        IniPreferenceStore store(path());
        store.setInteger(u"k"_s, 1);
        QVERIFY(QFileInfo(path()).isSymLink());
        QVERIFY(QFileInfo(path(u"link"_s)).isSymLink());
        QCOMPARE(get(target), "; mine\n[General]\nk=1\n");
        QCOMPARE(QFile::permissions(target), privateFile | QFile::ReadGroup);
    }

    void aDamagedFileIsKeptBeforeTheFirstWrite()
    {
        const QByteArray damaged = "[General]\na=1\nb=\"open\n" + QByteArray(10, '\0') + "\nc=3\n";
        put(path(), damaged);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"is damaged"_s));
        IniPreferenceStore store(path());
        QCOMPARE(store.integer(u"a"_s), 1);
        QVERIFY(!store.string(u"b"_s));
        QCOMPARE(store.integer(u"c"_s), 3);
        QCOMPARE(get(path()), damaged);
        QVERIFY(!QFile::exists(path(u"kestrel.ini.broken"_s)));

        store.setInteger(u"d"_s, 4);
        QCOMPARE(get(path()), "[General]\na=1\nc=3\nd=4\n");
        QCOMPARE(get(path(u"kestrel.ini.broken"_s)), damaged);

        // the same again is kept already, another one gets a name of its own
        put(path(), damaged);
        store.setInteger(u"d"_s, 5);
        put(path(), "rubbish");
        store.setInteger(u"d"_s, 6);
        QCOMPARE(get(path()), "[General]\nd=6\n");
        QCOMPARE(get(path(u"kestrel.ini.broken"_s)), damaged);
        QCOMPARE(get(path(u"kestrel.ini.broken-2"_s)), "rubbish");
        QVERIFY(!QFile::exists(path(u"kestrel.ini.broken-3"_s)));
    }

    void whatCannotBeStoredIsAnnouncedAndForgotten_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("folder in the file's place") << u"folder"_s;
        QTest::newRow("file in the folder's place") << u"file/kestrel.ini"_s;
        QTest::newRow("the damaged file cannot be kept") << u"unkeepable.ini"_s;
    }

    void whatCannotBeStoredIsAnnouncedAndForgotten()
    {
        QFETCH(QString, file);
        QVERIFY(QDir(m_folder->path()).mkdir(u"folder"_s));
        put(path(u"file"_s), "not a folder");
        put(path(u"unkeepable.ini"_s), "k=1\nrubbish");
        // a link into nowhere "exists not" but cannot be written either
        QVERIFY(QFile::link(u"missing/x"_s, path(u"unkeepable.ini.broken"_s)));
        IniPreferenceStore store(path(file));
        const QSignalSpy failed(&store, &PreferenceStore::writeFailed);
        const auto before = store.integer(u"k"_s);
        store.setInteger(u"k"_s, 7);
        QCOMPARE(failed.size(), 1);
        QVERIFY(failed[0][0].toString().contains(path(file)));
        QCOMPARE(store.integer(u"k"_s), before);
        QCOMPARE(get(path(u"file"_s)), "not a folder");
        QCOMPARE(get(path(u"unkeepable.ini"_s)), "k=1\nrubbish");
    }

    void aFailedWriteLeavesTheFileAndIsNotMadeUpForLater_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("reason");
        QTest::newRow("full disk") << u"full"_s << u"no room for all of it"_s;
        QTest::newRow("someone else's folder") << u"foreign"_s << u"cannot be written to"_s;
    }

    void aFailedWriteLeavesTheFileAndIsNotMadeUpForLater()
    {
        QFETCH(QString, mode);
        QFETCH(QString, reason);
        const QByteArray content = "[General]\nk=5\nlong=" + QByteArray(5000, 'x') + '\n';
        put(path(), content);
        QFile::setPermissions(m_folder->path(), privateFolder | QFile::ReadOther | QFile::ExeOther);
        QFile::setPermissions(path(), privateFile | QFile::ReadOther);
        if (mode == u"foreign" && getuid() != 0) {
            // without root the writer is this very user
            QFile::setPermissions(m_folder->path(), QFile::ReadOwner | QFile::ExeOwner);
        }
        QProcess writer;
        startWriter(writer, { mode, path(), u"k"_s });
        QVERIFY(writer.waitForFinished());
        QFile::setPermissions(m_folder->path(), privateFolder);
        const QString said = QString::fromUtf8(writer.readAllStandardOutput());
        QVERIFY2(said.contains(reason), qPrintable(said));
        QVERIFY2(said.endsWith(u"\n5\n"), qPrintable(said));
        QCOMPARE(get(path()), content);
        QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden),
                 QStringList { u"kestrel.ini"_s });
    }

    void aLockThatNobodyReleasesFailsTheWrite()
    {
        QLockFile lock(path(u"kestrel.ini.lock"_s));
        QVERIFY(lock.lock());
        IniPreferenceStore store(path(), 1ms);
        const QSignalSpy failed(&store, &PreferenceStore::writeFailed);
        store.setInteger(u"k"_s, 1);
        QCOMPARE(failed.size(), 1);
        QVERIFY(!store.integer(u"k"_s));
        lock.unlock();
        store.setInteger(u"k"_s, 1);
        QCOMPARE(store.integer(u"k"_s), 1);
    }

    void aLockWithoutAnOwnerIsNoObstacle_data()
    {
        QTest::addColumn<int>("age"); // in seconds
        QTest::newRow("old") << 1;
        QTest::newRow("from before the clock was set back") << -24 * 3600;
    }

    void aLockWithoutAnOwnerIsNoObstacle()
    {
        QFETCH(const int, age);
        put(path(u"kestrel.ini.lock"_s), ""); // its process was killed before it wrote its name
        QFile lock(path(u"kestrel.ini.lock"_s));
        QVERIFY(lock.open(QIODevice::ReadWrite));
        QVERIFY(
            lock.setFileTime(QDateTime::currentDateTime().addSecs(-age), QFileDevice::FileModificationTime));
        lock.close();
        IniPreferenceStore store(path(), 1ms);
        const QSignalSpy failed(&store, &PreferenceStore::writeFailed);
        store.setInteger(u"k"_s, 1);
        QCOMPARE(failed.size(), 0);
        QCOMPARE(get(path()), "[General]\nk=1\n");
    }

    void changesOfOthersAreAnnouncedOnce_data()
    {
        QTest::addColumn<QString>("how");
        for (const auto *how :
             { "replaced", "replaced behind a link", "written into", "by QSettings", "removed" })
            QTest::newRow(how) << QString::fromLatin1(how);
    }

    void changesOfOthersAreAnnouncedOnce()
    {
        QFETCH(QString, how);
        const bool isLinked = how == u"replaced behind a link";
        const QString file = path(isLinked ? u"target.ini"_s : u"kestrel.ini"_s);
        if (isLinked)
            QVERIFY(QFile::link(file, path()));
        IniPreferenceStore store(path());
        const QSignalSpy changed(&store, &PreferenceStore::changedElsewhere);
        for (int round = 1; round <= 2; ++round) {
            store.setInteger(u"mine"_s, round);
            if (how.startsWith(u"replaced")) {
                replace(file, get(path()) + "theirs=" + QByteArray::number(round) + '\n');
            } else if (how == u"written into") {
                put(path(), get(path()) + "theirs=" + QByteArray::number(round) + '\n');
            } else if (how == u"by QSettings") {
                QSettings(path(), QSettings::IniFormat).setValue("theirs"_L1, round);
            } else {
                QVERIFY(QFile::remove(path()));
            }
            QTRY_COMPARE(changed.size(), round);
            if (how == u"removed") {
                QVERIFY(!store.integer(u"mine"_s));
            } else {
                QCOMPARE(store.integer(u"theirs"_s), round);
                QCOMPARE(store.integer(u"mine"_s), round);
            }
        }
    }

    void aReplacedFileIsWatchedInThePlaceOfTheOld()
    {
        put(path(), "k=1\n");
        const IniPreferenceStore store(path());
        const QSignalSpy changed(&store, &PreferenceStore::changedElsewhere);
        QFile old(path());
        QVERIFY(old.open(QIODevice::ReadOnly)); // so that it lives on without a name
        replace(path(), "k=2\n");
        QTRY_COMPARE(changed.size(), 1);
        put(path(), "k=3\n");
        QTRY_COMPARE(changed.size(), 2);
        QCOMPARE(store.integer(u"k"_s), 3);
    }

    void theFirstFileAndItsFolderAreSeen()
    {
        const IniPreferenceStore store(path(u"config/kestrel/kestrel.ini"_s));
        const QSignalSpy changed(&store, &PreferenceStore::changedElsewhere);
        QVERIFY(QDir(m_folder->path()).mkpath(u"config/kestrel"_s));
        put(path(u"config/kestrel/kestrel.ini"_s), "k=1\n");
        QTRY_COMPARE(changed.size(), 1);
        QCOMPARE(store.integer(u"k"_s), 1);
        replace(path(u"config/kestrel/kestrel.ini"_s), "k=2\n");
        QTRY_COMPARE(changed.size(), 2);
        QCOMPARE(store.integer(u"k"_s), 2);
    }

    void aWriteTakesInWhatOthersWroteJustBefore()
    {
        IniPreferenceStore store(path());
        const QSignalSpy changed(&store, &PreferenceStore::changedElsewhere);
        replace(path(), "theirs=1\n");
        store.setInteger(u"mine"_s, 2); // the event loop has not run in between
        QCOMPARE(changed.size(), 1);
        QCOMPARE(store.integer(u"theirs"_s), 1);
        QCOMPARE(get(path()), "theirs=1\nmine=2\n");
    }

    void twoProcessesKeepEachOthersValues()
    {
        constexpr int count = 40;
        IniPreferenceStore store(path());
        const QSignalSpy failed(&store, &PreferenceStore::writeFailed);
        store.setInteger(u"mine"_s, 0);
        store.setInteger(u"theirs"_s, 0);
        QProcess writer;
        startWriter(writer, { u"count"_s, path(), u"theirs"_s, QString::number(count) });
        qint64 seen = 0;
        for (int number = 1; number <= count; ++number) {
            store.setInteger(u"mine"_s, number);
            const qint64 theirs = store.integer(u"theirs"_s).value_or(-1);
            QVERIFY2(theirs >= seen, "an older value came back");
            seen = theirs;
        }
        QVERIFY(writer.waitForFinished());
        QCOMPARE(writer.readAllStandardOutput(), "");
        QCOMPARE(failed.size(), 0);
        const IniPreferenceStore after(path());
        QCOMPARE(after.integer(u"mine"_s), count);
        QCOMPARE(after.integer(u"theirs"_s), count);
    }

    void aKilledWriterLeavesTheOldOrTheNewValue()
    {
        const quint32 seed = QRandomGenerator::global()->generate();
        QRandomGenerator moments(seed);
        const QByteArray mine = "; mine\n[General]\naccounts=\"[{\\\"id\\\":\\\"a\\\"}]\"\nk=0\nlong="
            + QByteArray(20'000, 'x') + '\n';
        put(path(), mine);
        const QString accounts = IniPreferenceStore(path()).string(u"accounts"_s).value();
        for (int kill = 0; kill < 100; ++kill) {
            const auto told = [&](const char *what) {
                return qPrintable(u"kill %1 of seed %2: "_s.arg(kill).arg(seed) + QString::fromLatin1(what));
            };
            QProcess writer;
            startWriter(writer, { u"endless"_s, path(), u"k"_s });
            QVERIFY(writer.waitForReadyRead());
            QElapsedTimer since;
            since.start();
            const qint64 moment = moments.bounded(20'000'000);
            while (since.nsecsElapsed() < moment) { }
            writer.kill();
            QVERIFY(writer.waitForFinished());
            const qint64 said = writer.readAllStandardOutput().trimmed().split('\n').last().toLongLong();

            IniPreferenceStore store(path());
            const qint64 stored = store.integer(u"k"_s).value_or(-1);
            QVERIFY2(stored == said || stored == said + 1, told("neither the old nor the new number"));
            QVERIFY2(store.string(u"accounts"_s) == accounts, told("the accounts"));
            QVERIFY2(get(path()).replace("k=" + QByteArray::number(stored) + '\n', "k=0\n") == mine,
                     told("what nobody wrote is another"));
            const QSignalSpy failed(&store, &PreferenceStore::writeFailed);
            store.setInteger(u"k"_s, 0); // a lock that the dead left behind is no obstacle
            QVERIFY2(failed.isEmpty() && get(path()) == mine, told("the next write"));
        }
        // Where files without a name can be written, a new one has a name of its own for microseconds only.
        const int unnamed =
            ::open(QFile::encodeName(m_folder->path()), O_TMPFILE | O_RDWR, S_IRUSR | S_IWUSR);
        if (unnamed < 0)
            return;
        ::close(unnamed);
        const QStringList left = QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden);
        QVERIFY2(left.size() <= 5, qPrintable(left.join(u' ')));
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestIniPreferenceStore)
#include "TestIniPreferenceStore.moc"
