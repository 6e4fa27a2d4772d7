#include "auth/GoogleConfiguration.h"
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

class TestGoogleConfiguration final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesLoopbackBasesAlone_data();
    void takesLoopbackBasesAlone();
};

void TestGoogleConfiguration::takesLoopbackBasesAlone_data()
{
    QTest::addColumn<QString>("base");
    QTest::addColumn<QString>("root"); // of all endpoints, empty: refused
    QTest::newRow("address") << u"http://127.0.0.1:8080"_s << u"http://127.0.0.1:8080"_s;
    QTest::newRow("trailing slash") << u"http://127.0.0.1:8080/"_s << u"http://127.0.0.1:8080"_s;
    QTest::newRow("path") << u"http://127.0.0.1:8080/a/b//"_s << u"http://127.0.0.1:8080/a/b"_s;
    QTest::newRow("other loopback address") << u"http://127.1.2.3"_s << u"http://127.1.2.3"_s;
    QTest::newRow("IPv6") << u"http://[::1]:1"_s << u"http://[::1]:1"_s;
    QTest::newRow("name over TLS") << u"https://LocalHost:1"_s << u"https://localhost:1"_s;
    QTest::newRow("Google") << u"https://accounts.google.com"_s << QString();
    QTest::newRow("network address") << u"http://192.168.1.1:8080"_s << QString();
    QTest::newRow("any address") << u"http://0.0.0.0:8080"_s << QString();
    QTest::newRow("name that begins so") << u"http://127.0.0.1.example.com"_s << QString();
    QTest::newRow("name below localhost") << u"http://localhost.example.com"_s << QString();
    QTest::newRow("user name") << u"http://user@127.0.0.1:8080"_s << QString();
    QTest::newRow("loopback as user name") << u"http://127.0.0.1:80@example.com"_s << QString();
    QTest::newRow("query") << u"http://127.0.0.1:8080/?x"_s << QString();
    QTest::newRow("fragment") << u"http://127.0.0.1:8080/#x"_s << QString();
    QTest::newRow("other scheme") << u"ftp://127.0.0.1"_s << QString();
    QTest::newRow("no scheme") << u"127.0.0.1:8080"_s << QString();
    QTest::newRow("no host") << u"http:///x"_s << QString();
    QTest::newRow("nothing") << QString() << QString();
}

void TestGoogleConfiguration::takesLoopbackBasesAlone()
{
    QFETCH(QString, base);
    QFETCH(QString, root);

    const auto endpoints = GoogleEndpoints::at(QUrl(base, QUrl::StrictMode));

    QCOMPARE(endpoints.has_value(), !root.isEmpty());
    if (!endpoints) {
        QVERIFY(!endpoints.error().isEmpty());
        return;
    }
    QCOMPARE(endpoints->authorization.toString(), root + u"/o/oauth2/v2/auth"_s);
    QCOMPARE(endpoints->token.toString(), root + u"/token"_s);
    QCOMPARE(endpoints->revocation.toString(), root + u"/revoke"_s);
    QCOMPARE(endpoints->userInfo.toString(), root + u"/v1/userinfo"_s);
    QCOMPARE(endpoints->calendarApi.toString(), root);
}

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestGoogleConfiguration)

#include "TestGoogleConfiguration.moc"
