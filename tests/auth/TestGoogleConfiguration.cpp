#include "auth/GoogleConfiguration.h"
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

class TestGoogleConfiguration final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesLoopbackBasesAlone_data()
    {
        QTest::addColumn<QString>("root"); // of all endpoints, empty: refused
        QTest::newRow("http://127.0.0.1:8080/a/b//") << u"http://127.0.0.1:8080/a/b"_s;
        QTest::newRow("http://127.1.2.3") << u"http://127.1.2.3"_s;
        QTest::newRow("http://[::1]:1") << u"http://[::1]:1"_s;
        QTest::newRow("https://LocalHost:1") << u"https://localhost:1"_s;
        for (const char *base :
             { "", "https://accounts.google.com", "http://192.168.1.1:8080", "http://0.0.0.0:8080",
               "http://127.0.0.1.example.com", "http://localhost.example.com", "http://user@127.0.0.1:8080",
               "http://127.0.0.1:80@example.com", "http://127.0.0.1:8080/?x", "http://127.0.0.1:8080/#x",
               "ftp://127.0.0.1", "127.0.0.1:8080", "http:///x" })
            QTest::newRow(base) << QString();
    }

    void takesLoopbackBasesAlone()
    {
        QFETCH(QString, root);

        const auto endpoints =
            GoogleEndpoints::at(QUrl(QString::fromLatin1(QTest::currentDataTag()), QUrl::StrictMode));

        QCOMPARE(endpoints.has_value(), !root.isEmpty());
        if (!endpoints)
            return;
        QCOMPARE(endpoints->authorization.toString(), root + u"/o/oauth2/v2/auth"_s);
        QCOMPARE(endpoints->token.toString(), root + u"/token"_s);
        QCOMPARE(endpoints->revocation.toString(), root + u"/revoke"_s);
        QCOMPARE(endpoints->userInfo.toString(), root + u"/v1/userinfo"_s);
        QCOMPARE(endpoints->calendarApi.toString(), root);
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestGoogleConfiguration)
#include "TestGoogleConfiguration.moc"
