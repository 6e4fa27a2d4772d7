#include "helper/BundleInstaller.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/HomeInstallPlaces.h"
#include "support/Files.h"
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

class TestBundleInstaller final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_source = m_folder->filePath(u"source"_s);
        m_places = homeInstallPlaces(m_folder->filePath(u"it's \"home\" $1"_s));
        m_destination = m_places.destination;
        writeProgram(m_source + u"/bin/kestrel"_s, "new program");
        writeProgram(m_source + u"/libexec/kestrel/kestrel-browser-helper"_s, "new helper");
        writeFile(m_source + entry,
                  "[Desktop Entry]\nType=Application\nTryExec=kestrel\nExec=kestrel\n"
                  "[Desktop Action Join]\nName=Exec=\nExec=kestrel join\n");
        writeFile(m_source + icon, "new icon");
        writeFile(m_source + u"/lib/.hidden"_s, QByteArray(3'000'000, 'h'));
        ::symlink("../bin/kestrel", (m_source + u"/lib/again"_s).toUtf8().constData());
    }

    void replacesWhatIsThere()
    {
        writeFile(m_destination + u"/bin/kestrel"_s, "old program");
        writeFile(m_destination + u"/old"_s, "of the old one");
        writeFile(m_destination + u"/../.kestrel-copy-1/half"_s, "of one that was killed");

        const auto done = installBundle(m_source, m_places, 30s);

        QVERIFY2(done, qPrintable(done ? QString() : done.error()));
        QCOMPARE(contentOf(m_destination + u"/bin/kestrel"_s), "new program");
        QVERIFY(QFileInfo(m_destination + u"/bin/kestrel"_s).isExecutable());
        QCOMPARE(contentOf(m_destination + u"/lib/.hidden"_s).size(), 3'000'000);
        QCOMPARE(QFile::symLinkTarget(m_destination + u"/lib/again"_s), m_destination + u"/bin/kestrel"_s);
        QVERIFY(!QFile::exists(m_destination + u"/old"_s));
        QCOMPARE(besides(), QStringList { u"kestrel"_s });
    }

    void theDesktopLearnsOfIt_data()
    {
        QTest::addColumn<QByteArray>("command");
        QTest::addColumn<QByteArray>("linked");
        QTest::addColumn<bool>("becomesOurs");
        QTest::newRow("nothing there") << QByteArray() << QByteArray() << true;
        QTest::newRow("ours") << QByteArray() << QByteArray("ours") << true;
        QTest::newRow("another program") << QByteArray("#!/bin/sh\n") << QByteArray() << false;
        QTest::newRow("a link to another one") << QByteArray() << QByteArray("/usr/bin/true") << false;
    }
    void theDesktopLearnsOfIt()
    {
        QFETCH(QByteArray, command);
        QFETCH(QByteArray, linked);
        QFETCH(bool, becomesOurs);
        const QString name = m_places.commands + u"/kestrel"_s;
        const QString program = m_destination + u"/bin/kestrel"_s;
        QDir().mkpath(m_places.commands);
        if (!command.isEmpty())
            writeFile(name, command);
        if (linked == "ours")
            linked = program.toUtf8();
        if (!linked.isEmpty())
            ::symlink(linked.constData(), name.toUtf8().constData());

        const auto done = installBundle(m_source, m_places, 30s);

        QVERIFY2(done, qPrintable(done ? QString() : done.error()));
        const QString told = m_places.share + entry.sliced(6);
        QCOMPARE(execArguments(desktopEntryValue(told, "Exec"_L1)), QStringList { program });
        QVERIFY(contentOf(told).contains("$1/.local/opt/kestrel/bin/kestrel\" join\n"));
        QVERIFY(contentOf(told).contains("Name=Exec=\n"));
        QCOMPARE(contentOf(m_places.share + icon.sliced(6)), "new icon");
        QVERIFY(contentOf(m_places.share + service)
                    .startsWith("[D-BUS Service]\nName=app.kestrel.Kestrel.ChromeLauncher\nExec='"));
        QCOMPARE(QFile::symLinkTarget(name) == program, becomesOurs);
        if (!command.isEmpty())
            QCOMPARE(contentOf(name), command);
    }

    void refusesAndLeavesTheOldOneWhole_data()
    {
        QTest::addColumn<std::function<void()>>("spoil");
        QTest::addColumn<QString>("error");
        const auto row = [](const char *name, const std::function<void()> &spoil, const QString &error) {
            QTest::newRow(name) << spoil << error;
        };
        row(
            "no Kestrel", [this] { QFile::remove(m_source + u"/bin/kestrel"_s); },
            u"does not hold Kestrel"_s);
        row("half of Kestrel", [this] { QFile::remove(m_source + entry); }, u"does not hold all of"_s);
        row(
            "a folder in an icon's place", [this] { QDir().mkpath(m_places.share + icon.sliced(6)); },
            u"could not be put into the menu"_s);
        row(
            "a home that no menu entry can name",
            [this] { m_places = homeInstallPlaces(m_folder->filePath(u"a=b"_s)); },
            u"No menu entry can name"_s);
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
        row(
            "itself", [this] { m_places.destination = m_source + u"/copy"_s; },
            u"cannot be copied into itself"_s);
        row(
            "over something else",
            [this] {
                QFile::remove(m_destination + u"/bin/kestrel"_s);
                writeFile(m_destination + u"/thesis"_s, "mine");
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
        writeFile(m_destination + u"/bin/kestrel"_s, "old program");
        writeFile(m_destination + u"/old"_s, "of the old one");
        const QString old = m_destination + u"/old"_s;
        const QString oldEntry = m_places.share + entry.sliced(6);
        writeFile(oldEntry, "old entry");
        const QString name = m_places.commands + u"/kestrel"_s;
        spoil();

        const auto done = installBundle(m_source, m_places, m_patience);
        const rlimit none { RLIM_INFINITY, RLIM_INFINITY };
        ::setrlimit(RLIMIT_FSIZE, &none);

        QVERIFY(!done);
        QVERIFY2(done.error().contains(error), qPrintable(done.error()));
        QCOMPARE(contentOf(old), "of the old one");
        QCOMPARE(contentOf(oldEntry), "old entry");
        QVERIFY(!QFile::exists(name));
        QCOMPARE(besides(), QStringList { u"kestrel"_s });
    }

private:
    void link(const char *target) { ::symlink(target, (m_source + u"/lib/out"_s).toUtf8().constData()); }
    [[nodiscard]] QStringList besides() const
    {
        return QDir(m_destination + u"/.."_s)
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    inline static const auto entry = u"/share/applications/app.kestrel.Kestrel.desktop"_s;
    inline static const auto icon = u"/share/icons/hicolor/scalable/apps/app.kestrel.Kestrel.svg"_s;
    inline static const auto service = u"/dbus-1/services/app.kestrel.Kestrel.ChromeLauncher.service"_s;

    std::unique_ptr<QTemporaryDir> m_folder;
    InstallPlaces m_places;
    QString m_source;
    QString m_destination;
    std::chrono::milliseconds m_patience = 30s;
};

QTEST_GUILESS_MAIN(TestBundleInstaller)
#include "TestBundleInstaller.moc"
