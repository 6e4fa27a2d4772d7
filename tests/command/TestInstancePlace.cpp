#include "command/InstancePlace.h"
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace kestrel;
using namespace Qt::StringLiterals;

class TestInstancePlace : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void takesATestServerOnlyOnLoopbackAndWithAFolderMadeForIt_data()
    {
        QTest::addColumn<QString>("folder"); // of what initial kind
        QTest::addColumn<QString>("base");
        QTest::addColumn<bool>("accepted");

        const auto loopback = u"http://127.0.0.1:8080"_s;
        QTest::newRow("base without a folder") << u"none"_s << loopback << false;
        QTest::newRow("new folder") << u"new"_s << loopback << true;
        QTest::newRow("folder in use with Google") << u"used"_s << loopback << false;
        QTest::newRow("folder in use with Google, without a base") << u"used"_s << QString() << true;
        QTest::newRow("folder of a test server") << u"sample"_s << loopback << true;
        QTest::newRow("folder of a test server, without its base") << u"sample"_s << QString() << false;
        QTest::newRow("another host") << u"new"_s << u"http://example.com"_s << false;
    }

    void takesATestServerOnlyOnLoopbackAndWithAFolderMadeForIt()
    {
        QFETCH(QString, folder);
        QFETCH(QString, base);
        QFETCH(bool, accepted);
        QTemporaryDir temporary;
        QString path = temporary.filePath(u"data"_s);
        if (folder == "none"_L1)
            path.clear();
        if (folder == "empty"_L1 || folder == "used"_L1)
            QVERIFY(QDir().mkpath(path));
        if (folder == "used"_L1)
            QVERIFY(QFile(path + u"/kestrel.ini"_s).open(QIODevice::WriteOnly));
        if (folder == "sample"_L1)
            QVERIFY(InstancePlace::resolve(path, u"http://localhost:1"_s));

        const auto place = InstancePlace::resolve(path, base);

        QCOMPARE(place.has_value(), accepted);
        if (!accepted)
            QVERIFY(!place.error().isEmpty());
    }

    void keepsFoldersApartAndOneFolderTogether()
    {
        QTemporaryDir temporary;
        const auto first = InstancePlace::resolve(temporary.filePath(u"a"_s), {});
        const auto second = InstancePlace::resolve(temporary.filePath(u"b"_s), {});
        QVERIFY(QFile::link(temporary.filePath(u"a"_s), temporary.filePath(u"link"_s)));
        const auto throughLink = InstancePlace::resolve(temporary.filePath(u"link"_s), {});
        const auto own = InstancePlace::resolve({}, {});

        QVERIFY(first && second && throughLink && own);
        QVERIFY(first->busName != second->busName);
        QVERIFY(first->busName != own->busName);
        QVERIFY(first->secretService != own->secretService);
        // the person's own browsers are never driven from elsewhere
        QVERIFY(first->browserSockets != own->browserSockets);
        QVERIFY(first->browserProfile != own->browserProfile);
        QVERIFY2(first->install.destination.startsWith(first->dataFolder),
                 "nothing is installed for the person");
        QCOMPARE(throughLink->busName, first->busName);
        QCOMPARE(throughLink->secretService, first->secretService);
    }

    void programsDoNotStayEverywhere_data()
    {
        QTest::addColumn<QByteArray>("image");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<bool>("passes");
        QTest::newRow("stick") << QByteArray() << u"/media/ann/stick/Kestrel"_s << true;
        QTest::newRow("stick of a session") << QByteArray() << u"/run/media/ann/stick"_s << true;
        QTest::newRow("mounted by hand") << QByteArray() << u"/mnt/stick"_s << true;
        QTest::newRow("image") << QByteArray() << u"/tmp/.mount_KesAbc/usr"_s << true;
        QTest::newRow("image elsewhere") << QByteArray("/var/image") << u"/var/image/usr"_s << true;
        QTest::newRow("package, from another image") << QByteArray("/var/image") << u"/usr"_s << false;
        QTest::newRow("an image that claims everything") << QByteArray("/") << u"/usr"_s << false;
        QTest::newRow("home on another drive") << QByteArray() << u"/mnt/ann/.local/opt/kestrel"_s << false;
    }
    void programsDoNotStayEverywhere()
    {
        QFETCH(QByteArray, image);
        QFETCH(QString, folder);
        QFETCH(bool, passes);
        qputenv("HOME", "/mnt/ann");
        qputenv("KESTREL_PASSING", "/usr/"); // of no account without a data folder
        qputenv("APPIMAGE", "Kestrel.AppImage");
        qputenv("APPDIR", image);
        const auto place = InstancePlace::resolve({}, {});
        QVERIFY(place);
        QCOMPARE(place->install.isPassing(folder + u'/'), passes);
    }
};

QTEST_GUILESS_MAIN(TestInstancePlace)
#include "TestInstancePlace.moc"
