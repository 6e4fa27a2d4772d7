#include "helper/BundleInstaller.h"
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace kestrel;
using namespace std::chrono_literals;

namespace {

void write(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(content);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("nothing");
}

} // namespace

class TestBundleInstaller final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_source = m_folder->filePath(u"source"_s);
        m_destination = m_folder->filePath(u"opt/kestrel"_s);
        write(m_source + u"/bin/kestrel"_s, "new program");
        ::chmod((m_source + u"/bin/kestrel"_s).toUtf8().constData(), 0755);
        write(m_source + u"/lib/.hidden"_s, QByteArray(3'000'000, 'h'));
        ::symlink("../bin/kestrel", (m_source + u"/lib/again"_s).toUtf8().constData());
    }

    void replacesWhatIsThere_data()
    {
        QTest::addColumn<bool>("isThere");
        QTest::newRow("for the first time") << false;
        QTest::newRow("over an old one") << true;
    }
    void replacesWhatIsThere()
    {
        QFETCH(bool, isThere);
        if (isThere) {
            write(m_destination + u"/bin/kestrel"_s, "old program");
            write(m_destination + u"/old"_s, "of the old one");
            write(m_folder->filePath(u"opt/.kestrel-copy-1/half"_s), "of one that was killed");
        }

        const auto done = installBundle(m_source, m_destination, 30s);

        QVERIFY2(done, qPrintable(done ? QString() : done.error()));
        QCOMPARE(contentOf(m_destination + u"/bin/kestrel"_s), "new program");
        QVERIFY(QFileInfo(m_destination + u"/bin/kestrel"_s).isExecutable());
        QCOMPARE(contentOf(m_destination + u"/lib/.hidden"_s).size(), 3'000'000);
        QCOMPARE(QFile::symLinkTarget(m_destination + u"/lib/again"_s), m_destination + u"/bin/kestrel"_s);
        QVERIFY(!QFile::exists(m_destination + u"/old"_s));
        QCOMPARE(besides(), QStringList { u"kestrel"_s });
    }

    void refusesAndLeavesTheOldOneWhole_data()
    {
        QTest::addColumn<std::function<void()>>("spoil");
        QTest::addColumn<QString>("error");
        const auto row = [](const char *name, std::function<void()> spoil, const QString &error) {
            QTest::newRow(name) << std::move(spoil) << error;
        };
        row(
            "no Kestrel", [this] { QFile::remove(m_source + u"/bin/kestrel"_s); },
            u"does not hold Kestrel"_s);
        row("no folder", [this] { QDir(m_source).removeRecursively(); }, u"is not a folder"_s);
        row("a link upwards", [this] { link("../../secret"); }, u"leads out of the folder"_s);
        row("an absolute link", [this] { link("/etc/passwd"); }, u"leads out of the folder"_s);
        row(
            "a pipe", [this] { ::mkfifo((m_source + u"/pipe"_s).toUtf8().constData(), 0600); },
            u"neither file"_s);
        row(
            "somebody else's file",
            [this] {
                if (::lchown((m_source + u"/lib/.hidden"_s).toUtf8().constData(), 4711, 4711) != 0)
                    QSKIP("only root can give files away");
            },
            u"belongs to somebody else"_s);
        row("itself", [this] { m_destination = m_source + u"/copy"_s; }, u"cannot be copied into itself"_s);
        row(
            "over something else",
            [this] {
                QFile::remove(m_destination + u"/bin/kestrel"_s);
                write(m_destination + u"/thesis"_s, "mine");
            },
            u"holds something else than Kestrel"_s);
        // a full disk, played by a bound on the size of files
        row(
            "no room",
            [] {
                ::signal(SIGXFSZ, SIG_IGN);
                const rlimit bound { 1'000'000, RLIM_INFINITY };
                ::setrlimit(RLIMIT_FSIZE, &bound);
            },
            u"Kestrel could not be copied"_s);
        row("no time", [this] { m_patience = 0s; }, u"took too long"_s);
    }
    void refusesAndLeavesTheOldOneWhole()
    {
        QFETCH(std::function<void()>, spoil);
        QFETCH(QString, error);
        m_patience = 30s;
        write(m_destination + u"/bin/kestrel"_s, "old program");
        write(m_destination + u"/old"_s, "of the old one");
        const QString old = m_destination + u"/old"_s;
        spoil();

        const auto done = installBundle(m_source, m_destination, m_patience);
        const rlimit none { RLIM_INFINITY, RLIM_INFINITY };
        ::setrlimit(RLIMIT_FSIZE, &none);

        QVERIFY(!done);
        QVERIFY2(done.error().contains(error), qPrintable(done.error()));
        QCOMPARE(contentOf(old), "of the old one");
        QCOMPARE(besides(), QStringList { u"kestrel"_s });
    }

private:
    void link(const char *target) { ::symlink(target, (m_source + u"/lib/out"_s).toUtf8().constData()); }
    [[nodiscard]] QStringList besides() const
    {
        return QDir(m_folder->filePath(u"opt"_s))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_source;
    QString m_destination;
    std::chrono::milliseconds m_patience = 30s;
};

QTEST_GUILESS_MAIN(TestBundleInstaller)
#include "TestBundleInstaller.moc"
