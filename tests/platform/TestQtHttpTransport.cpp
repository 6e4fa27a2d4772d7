#include "base/Started.h"
#include "platform/Gzip.h"
#include "platform/linux/QtHttpTransport.h"
#include "support/FakeConnectivity.h"
#include <QProcess>
#include <QScopeGuard>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

using Answer = std::expected<HttpResponse, TransportError>;

/// Hands every request, head and announced body, to the test's script.
class ScriptedServer final : public QTcpServer
{
public:
    using Script = std::function<void(QTcpSocket &socket, const QByteArray &request)>;

    explicit ScriptedServer(Script script)
        : m_script(std::move(script))
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            auto *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(*socket); });
        });
        if (!listen(QHostAddress::LocalHost))
            qFatal("no port for the scripted server");
    }

    [[nodiscard]] QUrl url(const QString &path) const
    {
        return QUrl(u"http://127.0.0.1:%1%2"_s.arg(serverPort()).arg(path));
    }

    QList<QByteArray> requests;

private:
    void read(QTcpSocket &socket)
    {
        QByteArray &received = m_received[&socket];
        received += socket.readAll();
        const qsizetype headEnd = received.indexOf("\r\n\r\n");
        if (headEnd < 0)
            return;
        const QByteArray lower = received.toLower();
        const qsizetype length = lower.indexOf("content-length: ");
        const qsizetype bodySize =
            length < 0 ? 0 : lower.mid(length + 16, lower.indexOf('\r', length) - length - 16).toLongLong();
        if (received.size() < headEnd + 4 + bodySize)
            return;
        requests.append(std::exchange(received, {}));
        m_script(socket, requests.last());
    }

    Script m_script;
    QMap<QTcpSocket *, QByteArray> m_received;
};

QByteArray answer(const QByteArray &status, const QByteArray &body, const QByteArray &headers = {})
{
    return "HTTP/1.1 " + status + "\r\n" + headers + "Content-Length: " + QByteArray::number(body.size())
        + "\r\n\r\n" + body;
}

/// A script that gives everyone the same bytes and closes.
ScriptedServer::Script always(const QByteArray &bytes)
{
    return [bytes](QTcpSocket &socket, const QByteArray &) {
        socket.write(bytes);
        socket.disconnectFromHost();
    };
}

HttpRequest get(const QUrl &url)
{
    HttpRequest request;
    request.url = url;
    request.timeout = 100s; // the tests of the time-out set their own
    return request;
}

template<typename T>
auto errorKind(const std::optional<T> &result)
{
    return result && !result->has_value() ? std::optional(result->error().kind) : std::nullopt;
}

} // namespace

class TestQtHttpTransport final : public QObject
{
    Q_OBJECT

    FakeConnectivity m_connectivity;
    std::unique_ptr<QtHttpTransport> m_transport;

    Answer send(HttpRequest request) { return QCoro::waitFor(m_transport->send(std::move(request))); }

private Q_SLOTS:
    void init()
    {
        m_connectivity.setOnline(true);
        m_transport = std::make_unique<QtHttpTransport>(m_connectivity);
    }
    void cleanup() { m_transport.reset(); }

    void givesEveryStatusWithItsBody_data()
    {
        QTest::addColumn<QByteArray>("status");
        QTest::addColumn<QByteArray>("headers");
        QTest::newRow("redirect without a target") << "302 Found"_ba << ""_ba;
        QTest::newRow("token refused")
            << "401 Unauthorized"_ba << "WWW-Authenticate: Bearer realm=\"x\"\r\n"_ba;
        QTest::newRow("password asked for")
            << "401 Unauthorized"_ba << "WWW-Authenticate: Basic realm=\"x\"\r\n"_ba;
        QTest::newRow("unavailable") << "503 Service Unavailable"_ba << "Retry-After: 1\r\n"_ba;
    }

    void givesEveryStatusWithItsBody()
    {
        QFETCH(QByteArray, status);
        QFETCH(QByteArray, headers);
        ScriptedServer server(always(answer(status, "{\"error\": \"why\"}", headers)));

        const auto got = send(get(server.url(u"/x"_s)));

        QVERIFY2(got, got ? "" : qPrintable(got.error().description));
        QCOMPARE(got->status, status.left(3).toInt());
        QCOMPARE(got->body, "{\"error\": \"why\"}"_ba);
        QCOMPARE(server.requests.size(), 1);
    }

    void sendsWhatTheRequestHoldsAndNoCookies()
    {
        ScriptedServer server(always(answer("200 OK", "x", "Set-Cookie: session=1; Path=/\r\n")));
        HttpRequest request = get(server.url(u"/token?a=b%20c&d=%2B"_s));
        request.method = "POST";
        request.headers = { { "X-One", "two" } };
        QVERIFY(send(request));
        request.body = "code=1&more=2";
        QVERIFY(send(request));

        for (const QByteArray &body : { QByteArray(), request.body }) {
            const QByteArray sent = server.requests.value(body.isEmpty() ? 0 : 1);
            QVERIFY2(sent.startsWith("POST /token?a=b%20c&d=%2B HTTP/1.1\r\n"), sent);
            QVERIFY2(sent.contains("\r\nX-One: two\r\n"), sent);
            QVERIFY2(sent.contains("\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n"), sent);
            QVERIFY2(sent.endsWith("\r\n\r\n" + body), sent);
            QVERIFY2(!sent.toLower().contains("cookie"), sent);
        }
    }

    void followsRedirectsOfGet_data()
    {
        QTest::addColumn<QByteArray>("method");
        QTest::addColumn<QByteArray>("status");
        QTest::addColumn<int>("got");
        for (const char *status : { "301", "303", "308" })
            QTest::addRow("GET %s", status) << "GET"_ba << QByteArray(status) << 200;
        QTest::newRow("POST 302") << "POST"_ba << "302"_ba << 302;
        QTest::newRow("HEAD 302") << "HEAD"_ba << "302"_ba << 302;
    }

    void followsRedirectsOfGet()
    {
        QFETCH(QByteArray, method);
        QFETCH(QByteArray, status);
        QFETCH(int, got);
        ScriptedServer server([&](QTcpSocket &socket, const QByteArray &request) {
            socket.write(request.contains(" /a/old ") ? answer(status + " Moved", {}, "Location: new?x=1\r\n")
                                                      : answer("200 OK", "here"));
        });
        HttpRequest request = get(server.url(u"/a/old"_s));
        request.method = method;
        request.headers = { { "Authorization", "Bearer t" } };

        const auto answered = send(request);

        QVERIFY2(answered, answered ? "" : qPrintable(answered.error().description));
        QCOMPARE(answered->status, got);
        QCOMPARE(server.requests.size(), got == 200 ? 2 : 1);
        if (got == 200) {
            QCOMPARE(answered->body, "here"_ba);
            QVERIFY2(server.requests[1].startsWith("GET /a/new?x=1 "), server.requests[1]);
            QVERIFY2(server.requests[1].contains("\r\nAuthorization: Bearer t\r\n"), server.requests[1]);
        }
    }

    void givesUpAfterTenRedirects()
    {
        for (const int redirects : { 10, 11 }) {
            ScriptedServer server([&server, redirects](QTcpSocket &socket, const QByteArray &) {
                socket.write(server.requests.size() <= redirects
                                 ? answer("302 Found", "elsewhere", "Location: /again\r\n")
                                 : answer("200 OK", "here"));
            });

            const auto got = send(get(server.url(u"/"_s)));

            QCOMPARE(got.has_value(), redirects == 10);
            QCOMPARE(server.requests.size(), 11);
        }
    }

    void keepsTheTokenFromOtherOrigins()
    {
        ScriptedServer other(always(answer("200 OK", {})));
        ScriptedServer first(
            always(answer("302 Found", {}, "Location: " + other.url(u"/x"_s).toEncoded() + "\r\n")));
        HttpRequest request = get(first.url(u"/"_s));
        request.headers = { { "authorization", "Bearer secret" }, { "Accept", "application/json" } };

        QVERIFY(send(request));

        QVERIFY(first.requests.value(0).contains("secret"));
        QVERIFY2(!other.requests.value(0).contains("secret"), other.requests.value(0));
        QVERIFY2(other.requests.value(0).contains("\r\nAccept: application/json\r\n"),
                 other.requests.value(0));
    }

    void findsTheTargetOfARedirect_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QByteArray>("location");
        QTest::addColumn<QString>("target"); // empty: not followed
        QTest::addColumn<bool>("keepsToken");
        const QString https = u"https://a.example/x/y"_s;
        const QString http = u"http://a.example/x/y"_s;
        QTest::newRow("relative") << https << "z?q"_ba << u"https://a.example/x/z?q"_s << true;
        QTest::newRow("default port")
            << https << "https://a.example:443/"_ba << u"https://a.example:443/"_s << true;
        QTest::newRow("other port") << https << "https://a.example:444/"_ba << u"https://a.example:444/"_s
                                    << false;
        QTest::newRow("other host") << https << "//b.example/z"_ba << u"https://b.example/z"_s << false;
        QTest::newRow("name below") << https << "https://a.example.org/"_ba << u"https://a.example.org/"_s
                                    << false;
        QTest::newRow("password") << https << "https://u:p@a.example/"_ba << u"https://a.example/"_s << true;
        QTest::newRow("from https to http") << https << "http://a.example/"_ba << QString() << false;
        QTest::newRow("file") << http << "file:///etc/passwd"_ba << QString() << false;
        QTest::newRow("no host") << http << "http:///x"_ba << QString() << false;
        QTest::newRow("no address") << http << "http://a b/"_ba << QString() << false;
    }

    void findsTheTargetOfARedirect()
    {
        QFETCH(QString, from);
        QFETCH(QByteArray, location);
        QFETCH(QString, target);
        QFETCH(bool, keepsToken);

        const auto found = redirectTarget(QUrl(from), location);

        QCOMPARE(found.value_or(QUrl()).toString(), target);
        if (found)
            QCOMPARE(isSameOrigin(QUrl(from), *found), keepsToken);
    }

    void takesAnswersUpToTheLimit()
    {
        // zeros pack a thousandfold, which alone must not be held against an answer
        const QByteArray body(HttpTransport::largestAnswer, '0');
        ScriptedServer server([&](QTcpSocket &socket, const QByteArray &request) {
            socket.write(request.contains("/plain")
                             ? answer("200 OK", body)
                             : answer("200 OK", gzipped(body), "Content-Encoding: gzip\r\n"));
        });
        for (const auto &path : { u"/plain"_s, u"/packed"_s }) {
            const auto got = send(get(server.url(path)));
            QVERIFY2(got, got ? "" : qPrintable(got.error().description));
            QVERIFY(got->body == body);
        }
    }

    void cutsOffLargerAnswers_data()
    {
        QTest::addColumn<QByteArray>("head");
        QTest::addColumn<QByteArray>("piece"); // sent again and again
        const QByteArray megabyte(1 << 20, 'x');
        QTest::newRow("announced") << "HTTP/1.1 200 OK\r\nContent-Length: 16777217\r\n\r\n"_ba << ""_ba;
        QTest::newRow("no length at all") << "HTTP/1.1 200 OK\r\n\r\n"_ba << megabyte;
        QByteArray mixed; // half noise, half zeros: packs twofold
        for (quint32 i = 0, noise = 1; i < (1 << 16); ++i) {
            noise = noise * 1664525 + 1013904223;
            mixed += static_cast<char>(noise >> 24);
            mixed += '0';
        }
        const auto packed = [](const char *name, const QByteArray &body) {
            QTest::newRow(name) << "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: "
                    + QByteArray::number(body.size()) + "\r\n\r\n"
                    + body << ""_ba;
        };
        packed("packed a thousandfold", gzipped(QByteArray(20 << 20, '0')));
        packed("packed twofold", gzipped(mixed.repeated(129)));
    }

    void cutsOffLargerAnswers()
    {
        QFETCH(QByteArray, head);
        QFETCH(QByteArray, piece);
        qint64 sent = 0;
        ScriptedServer server([&](QTcpSocket &socket, const QByteArray &) {
            socket.write(head);
            if (piece.isEmpty())
                return;
            connect(&socket, &QTcpSocket::bytesWritten, &socket, [&] {
                if (socket.bytesToWrite() == 0)
                    sent += socket.write(piece);
            });
        });

        const auto got = send(get(server.url(u"/"_s)));

        QVERIFY(!got);
        QCOMPARE(got.error(),
                 (TransportError { TransportError::Kind::AnswerTooLarge, u"answer too large"_s }));
    }

    void failsWithoutAWholeAnswer_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("half a head") << "HTTP/1.1 200 OK\r\nContent-"_ba;
        QTest::newRow("half a body") << "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345"_ba;
        QTest::newRow("no HTTP") << "SSH-2.0-OpenSSH_9.2\r\n\r\n"_ba;
        const QByteArray packed = "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 10\r\n\r\n";
        QTest::newRow("half a packed body") << packed + gzipped("half an answer").first(10);
        QTest::newRow("half a packed chunk")
            << "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nTransfer-Encoding: chunked\r\n\r\na\r\n"
                + gzipped("half an answer").first(5);
        QByteArray wrong = gzipped("whose checksum is wrong");
        wrong.replace(wrong.size() - 8, 4, "\1\2\3\4");
        QTest::newRow("packed wrongly") << "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: "
                + QByteArray::number(wrong.size()) + "\r\n\r\n" + wrong;
        QTest::newRow("packed otherwise")
            << "HTTP/1.1 200 OK\r\nContent-Encoding: br\r\nContent-Length: 1\r\n\r\n0"_ba;
    }

    void failsWithoutAWholeAnswer()
    {
        QFETCH(QByteArray, bytes);
        ScriptedServer server(always(bytes));

        const auto got = send(get(server.url(u"/"_s)));

        QVERIFY2(!got, got ? qPrintable(u"%1: "_s.arg(got->statusOrMinusOne()) + got->bodyText()) : "");
        QCOMPARE(got.error().kind, TransportError::Kind::Network);
        QVERIFY(!got.error().description.isEmpty());
    }

    void saysWhyThereIsNoAnswer_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("why");
        QTest::newRow("a name that does not resolve") << u"kestrel.invalid"_s << u"not found"_s;
        QTest::newRow("nobody listens") << u"127.0.0.1:9"_s << u"refused"_s;
    }

    void saysWhyThereIsNoAnswer()
    {
        QFETCH(QString, host);
        QFETCH(QString, why);

        const auto got = send(get(QUrl(u"http://%1/"_s.arg(host))));

        QCOMPARE(errorKind(std::optional(got)), TransportError::Kind::Network);
        QVERIFY2(got.error().description.contains(why), qPrintable(got.error().description));
    }

    void givesDeadConnectionsUp_data()
    {
        QTest::addColumn<bool>("comesBack"); // the network; else a time-out tells
        QTest::newRow("after a time-out") << false;
        QTest::newRow("when the network is back") << true;
    }

    // Over HTTP/2, where everything goes through one connection: the server's is real, the line to it goes
    // dead.
    void givesDeadConnectionsUp()
    {
        QFETCH(bool, comesBack);
        QTemporaryDir folder;
        QProcess openssl;
        openssl.setWorkingDirectory(folder.path());
        openssl.start(u"openssl"_s,
                      { u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s, u"-days"_s, u"2"_s,
                        u"-subj"_s, u"/CN=line"_s, u"-addext"_s, u"subjectAltName=IP:127.0.0.1"_s,
                        u"-keyout"_s, u"key.pem"_s, u"-out"_s, u"certificate.pem"_s });
        QVERIFY(openssl.waitForFinished() && openssl.exitCode() == 0);
        const auto trusted = QSslConfiguration::defaultConfiguration();
        const auto restore = qScopeGuard([&] { QSslConfiguration::setDefaultConfiguration(trusted); });
        auto trusting = trusted;
        QVERIFY(trusting.addCaCertificates(folder.filePath(u"certificate.pem"_s)));
        QSslConfiguration::setDefaultConfiguration(trusting);
        QProcess server;
        server.setWorkingDirectory(folder.path());
        server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        server.start(u"node"_s, { QFINDTESTDATA("http2_line.js") });
        QVERIFY(server.waitForReadyRead());
        const HttpRequest request =
            get(QUrl(u"https://127.0.0.1:%1/"_s.arg(QString::fromLatin1(server.readLine().trimmed()))));
        const auto answered = [&](std::chrono::milliseconds timeout) {
            HttpRequest limited = request;
            limited.timeout = timeout;
            const auto got = send(std::move(limited));
            return got ? got->bodyText() : got.error().description;
        };
        QCOMPARE(answered(100s), u"2.0 on 1"_s);
        QCOMPARE(answered(100s), u"2.0 on 1"_s);

        server.write("\n");
        QVERIFY(server.waitForReadyRead());
        if (comesBack) {
            m_connectivity.setOnline(false);
            m_connectivity.setOnline(true);
        } else {
            QCOMPARE(answered(200ms), u"The request timed out."_s);
        }

        QCOMPARE(answered(100s), u"2.0 on 2"_s);
        server.closeWriteChannel();
        QVERIFY(server.waitForFinished());
    }

    void refusesWhatIsNotHttp()
    {
        HttpRequest file = get(QUrl(u"file:///etc/hostname"_s));
        HttpRequest injected = get(QUrl(u"http://127.0.0.1:9/"_s));
        injected.headers = { { "X-Header", "x\r\nInjected: 1" } };
        for (const HttpRequest &request : { file, injected })
            QCOMPARE(errorKind(std::optional(send(request))), TransportError::Kind::Network);
    }

    void endsSlowAnswers()
    {
        ScriptedServer server([&](QTcpSocket &socket, const QByteArray &) {
            socket.write("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n");
            auto *timer = new QTimer(&socket);
            connect(timer, &QTimer::timeout, &socket, [&socket] { socket.write("x"); });
            timer->start(10ms);
        });
        HttpRequest request = get(server.url(u"/"_s));
        request.timeout = 200ms;

        QCOMPARE(errorKind(std::optional(send(request))), TransportError::Kind::Timeout);
    }

    void reachesLoopbackOffline_data()
    {
        QTest::addColumn<bool>("isLoopbackAddress");
        for (const char *address : { "http://127.9.9.9/", "http://[::1]:1/", "http://LOCALHOST/" })
            QTest::newRow(address) << true;
        for (const char *address : { "http://128.0.0.1/", "https://localhost.example.com/",
                                     "https://127.0.0.1.example.com/", "https://127.0.0.1@example.com/" })
            QTest::newRow(address) << false;
    }

    void reachesLoopbackOffline()
    {
        m_connectivity.setOnline(false);

        const auto outcome =
            started(m_transport->waitForNetwork(u"A"_s, QUrl(QString::fromLatin1(QTest::currentDataTag()))));

        QTEST(outcome->has_value(), "isLoopbackAddress");
        m_connectivity.setOnline(true);
        QTRY_VERIFY(*outcome);
        QVERIFY((*outcome)->has_value());
    }

    void lettingTheNewerWaitReplaceTheOlder()
    {
        m_connectivity.setOnline(false);
        const auto wait = [this](const QString &account, const QString &url) {
            return started(m_transport->waitForNetwork(account, QUrl(url)));
        };
        const auto older = wait(u"A"_s, u"https://a.example/x?page=1"_s);
        const QList others { wait(u"B"_s, u"https://a.example/x"_s), wait(u"A"_s, u"https://b.example/x"_s),
                             wait(u"A"_s, u"https://a.example/y"_s) };
        QCoreApplication::processEvents();
        QVERIFY(!*older);

        HttpRequest request = get(QUrl(u"https://a.example/x?page=2"_s));
        request.account = u"A"_s;
        const auto replaced = started(m_transport->send(request));
        const auto newer = wait(u"A"_s, u"https://a.example/x?page=3"_s);

        QTRY_VERIFY(*older);
        QCOMPARE(errorKind(*older), TransportError::Kind::Superseded);
        QTRY_VERIFY(*replaced);
        QCOMPARE(errorKind(*replaced), TransportError::Kind::Superseded);
        m_connectivity.setOnline(false); // told again, still offline
        QCoreApplication::processEvents();
        QVERIFY(!*newer);
        m_connectivity.setOnline(true);
        QTRY_VERIFY(*newer);
        QVERIFY((*newer)->has_value());
        for (const auto &other : others) {
            QTRY_VERIFY(*other);
            QVERIFY((*other)->has_value());
        }
    }

    void goesWhileWorkIsUnderWay()
    {
        bool wasAsked = false;
        ScriptedServer server([&](QTcpSocket &socket, const QByteArray &) {
            socket.write("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345");
            wasAsked = true;
        });
        const auto underWay = started(m_transport->send(get(server.url(u"/"_s))));
        const auto justStarted = started(m_transport->send(get(server.url(u"/2"_s))));
        m_connectivity.setOnline(false);
        const auto waiting = started(m_transport->send(get(QUrl(u"https://a.example/"_s))));
        QTRY_VERIFY(wasAsked);
        QVERIFY(!*underWay && !*waiting);

        m_transport.reset();

        for (const auto &ended : { underWay, justStarted, waiting }) {
            QTRY_VERIFY(*ended);
            QCOMPARE(errorKind(*ended), TransportError::Kind::Network);
        }
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestQtHttpTransport)

#include "TestQtHttpTransport.moc"
