#include "demo/HttpServer.h"
#include "demo/SampleCall.h"
#include "platform/linux/QtHttpTransport.h"
#include "support/FakeConnectivity.h"
#include <QCoro/QCoroTask>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace kestrel;

namespace {

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED
constexpr auto oldVersion = QSsl::TlsV1_1;
constexpr auto anyVersion = QSsl::TlsV1_0OrLater;
QT_WARNING_POP

} // namespace

/// What the transport asks of whoever answers over TLS. OpenSSL itself and Qt would speak the old versions
/// here.
class TestTransportSecurity final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        const auto made = demo::SampleCall::selfSigned(u"localhost"_s);
        QVERIFY2(made, qPrintable(made ? QString() : made.error()));
        m_server = *made;
        QSslConfiguration client = QSslConfiguration::defaultConfiguration();
        client.setProtocol(anyVersion);
        client.setCaCertificates({ m_server.localCertificate() });
        QSslConfiguration::setDefaultConfiguration(client);
    }

    void answersComeFromWhoeverCanBeTrusted_data()
    {
        QTest::addColumn<QSsl::SslProtocol>("version");
        QTest::addColumn<QString>("host");
        QTest::addColumn<bool>("isTrusted");
        QTest::newRow("TLS 1.2") << QSsl::TlsV1_2 << u"localhost"_s << true;
        QTest::newRow("TLS 1.3") << QSsl::TlsV1_3 << u"localhost"_s << true;
        QTest::newRow("TLS 1.1") << oldVersion << u"localhost"_s << false;
        QTest::newRow("another host's certificate") << QSsl::TlsV1_3 << u"127.0.0.1"_s << false;
        QTest::newRow("nobody vouches for it") << QSsl::TlsV1_3 << u"localhost"_s << false;
    }

    void answersComeFromWhoeverCanBeTrusted()
    {
        QFETCH(const QSsl::SslProtocol, version);
        QFETCH(const QString, host);
        QFETCH(const bool, isTrusted);
        QSslConfiguration served = m_server;
        if (qstrcmp(QTest::currentDataTag(), "nobody vouches for it") == 0) {
            const auto unknown = demo::SampleCall::selfSigned(u"localhost"_s);
            QVERIFY(unknown);
            served = *unknown;
        }
        served.setProtocol(version);
        int asked = 0;
        demo::HttpServer server(
            [&asked](const demo::ReceivedRequest &) {
                ++asked;
                return demo::Answer { .contentType = "text/plain", .body = "answer" };
            },
            served);
        QVERIFY(server.listen(0));
        // it does speak that version, to whoever takes it
        QSslSocket probe;
        probe.setPeerVerifyMode(QSslSocket::VerifyNone);
        probe.connectToHostEncrypted(u"localhost"_s, server.port());
        QTRY_VERIFY(probe.isEncrypted());
        QCOMPARE(probe.sessionProtocol(), version);

        FakeConnectivity connectivity;
        QtHttpTransport transport(connectivity);
        HttpRequest request;
        request.url = QUrl(u"https://%1:%2/"_s.arg(host).arg(server.port()));
        request.headers = { { "Authorization", "Bearer secret" } };
        const auto answer = QCoro::waitFor(transport.send(request));
        QCOMPARE(answer.has_value(), isTrusted);
        QCOMPARE(asked, isTrusted ? 1 : 0);
        if (!isTrusted)
            QVERIFY(answer.error().kind == TransportError::Kind::Network);
    }

private:
    QSslConfiguration m_server;
};

QTEST_GUILESS_MAIN(TestTransportSecurity)
#include "TestTransportSecurity.moc"
