#include "platform/Gzip.h"
#include "platform/linux/QtHttpTransport.h"
#include "support/FakeConnectivity.h"
#include <QCoro/QCoroTask>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

using Answer = std::expected<HttpResponse, TransportError>;
using WaitOutcome = std::expected<void, TransportError>;

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
QCoro::Task<void> collect(QCoro::Task<T> task, std::shared_ptr<std::optional<T>> result)
{
    *result = co_await task;
}

/// Starts `task` and gives the place where its result will stand.
template<typename T>
std::shared_ptr<std::optional<T>> started(QCoro::Task<T> task)
{
    auto result = std::make_shared<std::optional<T>>();
    collect(std::move(task), result);
    return result;
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

    void givesEveryStatusWithItsBody_data();
    void givesEveryStatusWithItsBody();
    void sendsWhatTheRequestHolds();
    void postsAQueryWithoutABody();
    void keepsNoCookies();
    void followsRedirectsOfGet_data();
    void followsRedirectsOfGet();
    void givesUpAfterTenRedirects_data();
    void givesUpAfterTenRedirects();
    void keepsTheTokenFromOtherOrigins();
    void findsTheTargetOfARedirect_data();
    void findsTheTargetOfARedirect();
    void takesAnswersUpToTheLimit();
    void cutsOffLargerAnswers_data();
    void cutsOffLargerAnswers();
    void failsWithoutAWholeAnswer_data();
    void failsWithoutAWholeAnswer();
    void refusesWhatIsNotHttp_data();
    void refusesWhatIsNotHttp();
    void endsSlowAnswers_data();
    void endsSlowAnswers();
    void takesSeveralLargeAnswersAtOnce();
    void reachesLoopbackOffline_data();
    void reachesLoopbackOffline();
    void lettingTheNewerWaitReplaceTheOlder();
    void supersedesWaitingRequests();
    void goesWhileWorkIsUnderWay();
};

void TestQtHttpTransport::givesEveryStatusWithItsBody_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("headers");
    QTest::newRow("ok") << "200 OK"_ba << ""_ba;
    QTest::newRow("created") << "201 Created"_ba << ""_ba;
    QTest::newRow("redirect without a target") << "302 Found"_ba << ""_ba;
    QTest::newRow("bad request") << "400 Bad Request"_ba << ""_ba;
    QTest::newRow("token refused") << "401 Unauthorized"_ba << "WWW-Authenticate: Bearer realm=\"x\"\r\n"_ba;
    QTest::newRow("password asked for")
        << "401 Unauthorized"_ba << "WWW-Authenticate: Basic realm=\"x\"\r\n"_ba;
    QTest::newRow("refused without a challenge") << "401 Unauthorized"_ba << ""_ba;
    QTest::newRow("forbidden") << "403 Forbidden"_ba << ""_ba;
    QTest::newRow("not found") << "404 Not Found"_ba << ""_ba;
    QTest::newRow("gone") << "410 Gone"_ba << ""_ba;
    QTest::newRow("too many") << "429 Too Many Requests"_ba << ""_ba;
    QTest::newRow("server error") << "500 Oops"_ba << ""_ba;
    QTest::newRow("unavailable") << "503 Service Unavailable"_ba << "Retry-After: 1\r\n"_ba;
    QTest::newRow("unheard of") << "599 Whatever"_ba << ""_ba;
}

void TestQtHttpTransport::givesEveryStatusWithItsBody()
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

void TestQtHttpTransport::sendsWhatTheRequestHolds()
{
    ScriptedServer server(always(answer("200 OK", {})));
    HttpRequest request = get(server.url(u"/token?a=b%20c&d=%2B"_s));
    request.method = "POST";
    request.headers = { { "Content-Type", "application/x-www-form-urlencoded" }, { "X-One", "two" } };
    request.body = "code=1&more=2";

    QVERIFY(send(request));

    const QByteArray sent = server.requests.value(0);
    QVERIFY2(sent.startsWith("POST /token?a=b%20c&d=%2B HTTP/1.1\r\n"), sent);
    QVERIFY2(sent.contains("\r\nContent-Type: application/x-www-form-urlencoded\r\n"), sent);
    QVERIFY2(sent.contains("\r\nX-One: two\r\n"), sent);
    QVERIFY2(sent.contains("\r\nContent-Length: 13\r\n"), sent);
    QVERIFY2(sent.endsWith("\r\n\r\ncode=1&more=2"), sent);
}

void TestQtHttpTransport::postsAQueryWithoutABody()
{
    ScriptedServer server(always(answer("200 OK", {})));
    HttpRequest request = get(server.url(u"/revoke?token=t"_s));
    request.method = "POST";

    QVERIFY(send(request));

    const QByteArray sent = server.requests.value(0);
    QVERIFY2(sent.startsWith("POST /revoke?token=t HTTP/1.1\r\n"), sent);
    QVERIFY2(sent.contains("\r\nContent-Length: 0\r\n"), sent);
    QVERIFY2(sent.endsWith("\r\n\r\n"), sent);
}

void TestQtHttpTransport::keepsNoCookies()
{
    ScriptedServer server(always(answer("200 OK", "x", "Set-Cookie: session=1; Path=/\r\n")));

    QVERIFY(send(get(server.url(u"/"_s))));
    QVERIFY(send(get(server.url(u"/"_s))));

    QCOMPARE(server.requests.size(), 2);
    QVERIFY2(!server.requests[1].toLower().contains("cookie"), server.requests[1]);
}

void TestQtHttpTransport::followsRedirectsOfGet_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<int>("got");
    for (const char *status : { "301", "302", "303", "307", "308" })
        QTest::addRow("GET %s", status) << "GET"_ba << QByteArray(status) << 200;
    QTest::newRow("GET 304") << "GET"_ba << "304"_ba << 304;
    QTest::newRow("POST 302") << "POST"_ba << "302"_ba << 302;
    QTest::newRow("POST 307") << "POST"_ba << "307"_ba << 307;
    QTest::newRow("HEAD 302") << "HEAD"_ba << "302"_ba << 302;
}

void TestQtHttpTransport::followsRedirectsOfGet()
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

void TestQtHttpTransport::givesUpAfterTenRedirects_data()
{
    QTest::addColumn<int>("redirects");
    QTest::addColumn<bool>("arrives");
    QTest::newRow("ten") << 10 << true;
    QTest::newRow("eleven") << 11 << false;
}

void TestQtHttpTransport::givesUpAfterTenRedirects()
{
    QFETCH(int, redirects);
    QFETCH(bool, arrives);
    ScriptedServer server([&server, redirects](QTcpSocket &socket, const QByteArray &) {
        socket.write(server.requests.size() <= redirects
                         ? answer("302 Found", "elsewhere", "Location: /again\r\n")
                         : answer("200 OK", "here"));
    });

    const auto got = send(get(server.url(u"/"_s)));

    QCOMPARE(got.has_value(), arrives);
    QCOMPARE(server.requests.size(), 11);
    if (got)
        QCOMPARE(got->body, "here"_ba);
    else
        QCOMPARE(got.error().kind, TransportError::Kind::Network);
}

void TestQtHttpTransport::keepsTheTokenFromOtherOrigins()
{
    ScriptedServer other(always(answer("200 OK", {})));
    ScriptedServer first(
        always(answer("302 Found", {}, "Location: " + other.url(u"/x"_s).toEncoded() + "\r\n")));
    HttpRequest request = get(first.url(u"/"_s));
    request.headers = { { "authorization", "Bearer secret" }, { "Accept", "application/json" } };

    QVERIFY(send(request));

    QVERIFY(first.requests.value(0).contains("secret"));
    QCOMPARE(other.requests.size(), 1);
    QVERIFY2(!other.requests[0].contains("secret"), other.requests[0]);
    QVERIFY2(other.requests[0].contains("\r\nAccept: application/json\r\n"), other.requests[0]);
}

void TestQtHttpTransport::findsTheTargetOfARedirect_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QByteArray>("location");
    QTest::addColumn<QString>("target"); // empty: not followed
    QTest::addColumn<bool>("keepsToken");
    const QString https = u"https://a.example/x/y"_s;
    const QString http = u"http://a.example/x/y"_s;
    QTest::newRow("relative") << https << "z?q"_ba << u"https://a.example/x/z?q"_s << true;
    QTest::newRow("path") << https << "/z"_ba << u"https://a.example/z"_s << true;
    QTest::newRow("default port") << https << "https://a.example:443/"_ba << u"https://a.example:443/"_s
                                  << true;
    QTest::newRow("letter case") << https << "HTTPS://A.EXAMPLE/"_ba << u"https://a.example/"_s << true;
    QTest::newRow("other port") << https << "https://a.example:444/"_ba << u"https://a.example:444/"_s
                                << false;
    QTest::newRow("other host") << https << "//b.example/z"_ba << u"https://b.example/z"_s << false;
    QTest::newRow("name below") << https << "https://a.example.org/"_ba << u"https://a.example.org/"_s
                                << false;
    QTest::newRow("to https") << http << "https://a.example/"_ba << u"https://a.example/"_s << false;
    QTest::newRow("password") << https << "https://u:p@a.example/"_ba << u"https://a.example/"_s << true;
    QTest::newRow("from https to http") << https << "http://a.example/"_ba << QString() << false;
    QTest::newRow("file") << http << "file:///etc/passwd"_ba << QString() << false;
    QTest::newRow("data") << http << "data:text/plain,x"_ba << QString() << false;
    QTest::newRow("no host") << http << "http:///x"_ba << QString() << false;
    QTest::newRow("nothing") << http << ""_ba << QString() << false;
    QTest::newRow("no address") << http << "http://a b/"_ba << QString() << false;
}

void TestQtHttpTransport::findsTheTargetOfARedirect()
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

void TestQtHttpTransport::takesAnswersUpToTheLimit()
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

void TestQtHttpTransport::cutsOffLargerAnswers_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("piece"); // sent again and again
    const QByteArray megabyte(1 << 20, 'x');
    QTest::newRow("announced") << "HTTP/1.1 200 OK\r\nContent-Length: 16777217\r\n\r\n"_ba << ""_ba;
    QTest::newRow("chunks without end") << "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"_ba
                                        << "100000\r\n" + megabyte + "\r\n";
    QTest::newRow("no length at all") << "HTTP/1.1 200 OK\r\n\r\n"_ba << megabyte;
    QTest::newRow("an error page") << "HTTP/1.1 500 Oops\r\n\r\n"_ba << megabyte;
    const QByteArray packed = gzipped(QByteArray(20 << 20, '0'));
    const QByteArray packedHead = "\r\nContent-Encoding: gzip\r\nContent-Length: "
        + QByteArray::number(packed.size()) + "\r\n\r\n" + packed;
    QTest::newRow("packed a thousandfold") << "HTTP/1.1 200 OK" + packedHead << ""_ba;
    QTest::newRow("packed error page") << "HTTP/1.1 503 Oops" + packedHead << ""_ba;
    QByteArray mixed; // half noise, half zeros: packs twofold
    for (quint32 i = 0, noise = 1; i < (1 << 16); ++i) {
        noise = noise * 1664525 + 1013904223;
        mixed += static_cast<char>(noise >> 24);
        mixed += '0';
    }
    const QByteArray packedMixed = gzipped(mixed.repeated(129));
    QTest::newRow("packed twofold") << "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: "
            + QByteArray::number(packedMixed.size()) + "\r\n\r\n"
            + packedMixed << ""_ba;
}

void TestQtHttpTransport::cutsOffLargerAnswers()
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
    QCOMPARE(got.error(), (TransportError { TransportError::Kind::AnswerTooLarge, u"answer too large"_s }));
}

void TestQtHttpTransport::failsWithoutAWholeAnswer_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("closed at once") << ""_ba;
    QTest::newRow("half a head") << "HTTP/1.1 200 OK\r\nContent-"_ba;
    QTest::newRow("half a body") << "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345"_ba;
    QTest::newRow("half an error page") << "HTTP/1.1 503 Oops\r\nContent-Length: 10\r\n\r\n12345"_ba;
    QTest::newRow("no HTTP") << "SSH-2.0-OpenSSH_9.2\r\n\r\n"_ba;
    const QByteArray packed = "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 10\r\n\r\n";
    QTest::newRow("half a packed body") << packed + gzipped("half an answer").first(10);
    QTest::newRow("half a packed chunk")
        << "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nTransfer-Encoding: chunked\r\n\r\na\r\n"
            + gzipped("half an answer").first(5);
    QTest::newRow("packed body that is not packed") << packed + "0123456789";
    QTest::newRow("packed otherwise")
        << "HTTP/1.1 200 OK\r\nContent-Encoding: br\r\nContent-Length: 1\r\n\r\n0"_ba;
}

void TestQtHttpTransport::failsWithoutAWholeAnswer()
{
    QFETCH(QByteArray, bytes);
    ScriptedServer server(always(bytes));

    const auto got = send(get(server.url(u"/"_s)));

    QVERIFY2(!got, got ? qPrintable(u"%1: "_s.arg(got->statusOrMinusOne()) + got->bodyText()) : "");
    QCOMPARE(got.error().kind, TransportError::Kind::Network);
    QVERIFY(!got.error().description.isEmpty());
}

void TestQtHttpTransport::refusesWhatIsNotHttp_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<QByteArray>("headerValue");
    QTest::newRow("file") << QUrl(u"file:///etc/hostname"_s) << "x"_ba;
    QTest::newRow("data") << QUrl(u"data:,x"_s) << "x"_ba;
    QTest::newRow("nothing") << QUrl() << "x"_ba;
    QTest::newRow("two headers in one") << QUrl(u"http://127.0.0.1:9/"_s) << "x\r\nInjected: 1"_ba;
}

void TestQtHttpTransport::refusesWhatIsNotHttp()
{
    QFETCH(QUrl, url);
    QFETCH(QByteArray, headerValue);
    HttpRequest request = get(url);
    request.headers = { { "X-Header", headerValue } };

    const auto got = send(request);

    QVERIFY(!got);
    QCOMPARE(got.error().kind, TransportError::Kind::Network);
}

void TestQtHttpTransport::endsSlowAnswers_data()
{
    QTest::addColumn<bool>("drips");
    QTest::newRow("silence") << false;
    QTest::newRow("byte by byte") << true;
}

void TestQtHttpTransport::endsSlowAnswers()
{
    QFETCH(bool, drips);
    ScriptedServer server([&](QTcpSocket &socket, const QByteArray &) {
        if (!drips)
            return;
        socket.write("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n");
        auto *timer = new QTimer(&socket);
        connect(timer, &QTimer::timeout, &socket, [&socket] { socket.write("x"); });
        timer->start(10ms);
    });
    HttpRequest request = get(server.url(u"/"_s));
    request.timeout = 200ms;

    const auto got = send(request);

    QVERIFY(!got);
    QCOMPARE(got.error().kind, TransportError::Kind::Timeout);
}

void TestQtHttpTransport::takesSeveralLargeAnswersAtOnce()
{
    const QByteArray body = QByteArray(600'000, 'x') + "end";
    ScriptedServer server(
        [&](QTcpSocket &socket, const QByteArray &) { socket.write(answer("200 OK", body)); });
    QList<std::shared_ptr<std::optional<Answer>>> answers;
    for (int i = 0; i < 20; ++i)
        answers.append(started(m_transport->send(get(server.url(u"/%1"_s.arg(i))))));
    for (const auto &got : answers) {
        QTRY_VERIFY_WITH_TIMEOUT(*got, 30'000);
        QVERIFY((*got)->has_value());
        QVERIFY((*got)->value().body == body);
    }
}

void TestQtHttpTransport::reachesLoopbackOffline_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("isLoopbackAddress");
    QTest::newRow("127.0.0.1") << u"http://127.0.0.1:1/"_s << true;
    QTest::newRow("127.9.9.9") << u"http://127.9.9.9/"_s << true;
    QTest::newRow("::1") << u"http://[::1]:1/"_s << true;
    QTest::newRow("localhost") << u"http://LOCALHOST/"_s << true;
    QTest::newRow("128.0.0.1") << u"http://128.0.0.1/"_s << false;
    QTest::newRow("name") << u"https://www.example.com/"_s << false;
    QTest::newRow("name that begins so") << u"https://localhost.example.com/"_s << false;
    QTest::newRow("digits that begin so") << u"https://127.0.0.1.example.com/"_s << false;
    QTest::newRow("user name") << u"https://127.0.0.1@example.com/"_s << false;
}

void TestQtHttpTransport::reachesLoopbackOffline()
{
    QFETCH(QString, address);
    QFETCH(bool, isLoopbackAddress);
    m_connectivity.setOnline(false);

    const auto outcome = started(m_transport->waitForNetwork(u"A"_s, QUrl(address)));

    QCOMPARE(outcome->has_value(), isLoopbackAddress);
    m_connectivity.setOnline(true);
    QTRY_VERIFY(*outcome);
    QVERIFY((*outcome)->has_value());
}

void TestQtHttpTransport::lettingTheNewerWaitReplaceTheOlder()
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

    const auto newer = wait(u"A"_s, u"https://a.example/x?page=2"_s);

    QTRY_VERIFY(*older);
    QCOMPARE(errorKind(*older), TransportError::Kind::Superseded);
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

void TestQtHttpTransport::supersedesWaitingRequests()
{
    m_connectivity.setOnline(false);
    HttpRequest request = get(QUrl(u"https://a.example/x"_s));
    request.account = u"A"_s;

    const auto older = started(m_transport->send(request));
    const auto newer = started(m_transport->waitForNetwork(request.account, request.url));

    QTRY_VERIFY(*older);
    QCOMPARE(errorKind(*older), TransportError::Kind::Superseded);
    m_transport.reset();
    QTRY_VERIFY(*newer);
    QCOMPARE(errorKind(*newer), TransportError::Kind::Network);
}

void TestQtHttpTransport::goesWhileWorkIsUnderWay()
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

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestQtHttpTransport)

#include "TestQtHttpTransport.moc"
