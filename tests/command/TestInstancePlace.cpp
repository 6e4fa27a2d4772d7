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
        QCOMPARE(throughLink->busName, first->busName);
        QCOMPARE(throughLink->secretService, first->secretService);
    }
};

QTEST_GUILESS_MAIN(TestInstancePlace)
#include "TestInstancePlace.moc"
