#include "auth/LoopbackServer.h"
#include <QCoro/QCoroTask>
#include <QFile>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <memory>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

using Result = LoopbackServer::Result;

constexpr auto longEnough = 60s;

/// A server that waits, and what became of the wait.
struct Waiting
{
    explicit Waiting(std::chrono::milliseconds timeout = longEnough,
                     const QString &logoPath = u"/no/such/logo"_s)
        : server(std::make_unique<LoopbackServer>(logoPath))
    {
        collect(server->waitForCallback(timeout), result);
    }

    static QCoro::Task<void> collect(QCoro::Task<Result> task, std::shared_ptr<std::optional<Result>> result)
    {
        *result = co_await task;
    }

    std::unique_ptr<LoopbackServer> server;
    std::shared_ptr<std::optional<Result>> result = std::make_shared<std::optional<Result>>();
};

/// A browser's connection, which reads until the server closes.
struct Browser
{
    explicit Browser(quint16 port) { socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port); }

    [[nodiscard]] bool isAnswered() { return socket.state() == QAbstractSocket::UnconnectedState; }

    QTcpSocket socket;
};

QByteArray getRequest(quint16 port, const QByteArray &target)
{
    return "GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(port)
        + "\r\nAccept: */*\r\n\r\n";
}

QByteArray expectedAnswer(int status, const QByteArray &body)
{
    return "HTTP/1.1 " + QByteArray::number(status)
        + " OK\r\nContent-Type: text/html; charset=utf-8\r\nContent-Length: "
        + QByteArray::number(body.size()) + "\r\nConnection: close\r\nCache-Control: no-store\r\n\r\n" + body;
}

QByteArray bodyOf(const QByteArray &answer)
{
    return answer.mid(answer.indexOf("\r\n\r\n") + 4);
}

const QByteArray closeWindow = "<p>You can close this window.</p>";
const QByteArray cancelled = "<p>Sign-in cancelled.</p>";

} // namespace

class TestLoopbackServer final : public QObject
{
    Q_OBJECT

    /// What a browser gets that sends these bytes at once.
    static QByteArray answerTo(const LoopbackServer &server, const QByteArray &request)
    {
        Browser browser(server.port());
        browser.socket.write(request);
        if (!QTest::qWaitFor([&] { return browser.isAnswered(); }, 20'000))
            return "no answer";
        return browser.socket.readAll();
    }

private Q_SLOTS:
    void answersEveryRequest_data();
    void answersEveryRequest();
    void judgesTheFirstBytesAlone();
    void answersAHundredBrowsersAtOnce();
    void outlastsLongRequests_data();
    void outlastsLongRequests();
    void swallowsWhatComesAfterTheAnswer();
    void answersABrowserThatOnlyListens();
    void endsWithABrowserThatSaysNothing();
    void takesTheCodeOfABrowserThatHasGone();
    void closesItsPort_data();
    void closesItsPort();
    void showsTheLogo_data();
    void showsTheLogo();
    void failsWithoutAPort();
};

void TestLoopbackServer::answersEveryRequest_data()
{
    QTest::addColumn<QByteArray>("request"); // PORT stands for the port
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body"); // a paragraph: somewhere on the page
    QTest::addColumn<bool>("ends");
    QTest::addColumn<QString>("code"); // null: the wait ends with a malformed request
    QTest::addColumn<QString>("state");

    const QByteArray host = " HTTP/1.1\r\nHost: 127.0.0.1:PORT\r\n\r\n";
    const auto good = [&](const char *name, const QByteArray &target, const QString &code,
                          const QString &state) {
        QTest::newRow(name) << "GET " + target + host << 200 << closeWindow << true << code << state;
    };
    good("code and state", "/callback?code=abc&state=xyz", u"abc"_s, u"xyz"_s);
    good("state first", "/callback?state=xyz&code=abc", u"abc"_s, u"xyz"_s);
    good("other items", "/callback?iss=https://a&code=abc&scope=x%20y&state=xyz&&=", u"abc"_s, u"xyz"_s);
    good("first of two", "/callback?code=1&code=2&state=3&state=4", u"1"_s, u"3"_s);
    good("percent escapes", "/callback?code=4%2F0A%3D%c3%a9&state=%7Ex", u"4/0A=é"_s, u"~x"_s);
    good("plus", "/callback?code=a+b&state=+", u"a+b"_s, u"+"_s);
    good("equals sign in the value", "/callback?code=a=b&state==", u"a=b"_s, u"="_s);
    good("escaped name", "/callback?%63ode=abc&state=xyz", u"abc"_s, u"xyz"_s);
    good("question mark in the value", "/callback?code=a?b&state=xyz", u"a?b"_s, u"xyz"_s);
    good("empty values", "/callback?code=&state=", u""_s, u""_s);
    good("longer path", "/callback2/x?code=abc&state=xyz", u"abc"_s, u"xyz"_s);
    good("letter case of other names", "/callback?Error=no&CODE=1&code=abc&state=xyz", u"abc"_s, u"xyz"_s);
    const auto accepted = [&](const char *name, const QByteArray &request) {
        QTest::newRow(name) << request << 200 << closeWindow << true << u"a"_s << u"b"_s;
    };
    accepted("no blank line", "GET /callback?code=a&state=b HTTP/1.1\r\nHost: 127.0.0.1:PORT");
    accepted("more spaces", "  GET   /callback?code=a&state=b  HTTP/1.1 \r\nHost: 127.0.0.1:PORT\r\n\r\n");
    accepted("no version", "GET /callback?code=a&state=b\r\nHost: 127.0.0.1:PORT\r\n\r\n");
    accepted("host in capitals", "GET /callback?code=a&state=b x\r\nHOST:\t 127.0.0.1:PORT \t\r\n\r\n");
    accepted("second host ignored",
             "GET /callback?code=a&state=b x\r\nhost:127.0.0.1:PORT\r\nHost: evil.example\r\n\r\n");
    accepted("a body", "GET /callback?code=a&state=b x\r\nhost:127.0.0.1:PORT\r\n\r\n\xc3\xa9");

    const auto refused = [&](const char *name, const QByteArray &request) {
        QTest::newRow(name) << request << 400 << "Bad request"_ba << true << QString() << QString();
    };
    refused("POST", "POST /callback?code=a&state=b" + host);
    refused("HEAD", "HEAD /callback?code=a&state=b" + host);
    refused("lower-case get", "get /callback?code=a&state=b" + host);
    refused("one word", "GET\r\nHost: 127.0.0.1:PORT\r\n\r\n");
    refused("empty first line", "\r\nGET /callback?code=a&state=b" + host);
    refused("a byte order mark", "\xef\xbb\xbfGET /callback?code=a&state=b" + host);
    refused("not UTF-8", "GET /callback?code=a&state=b&x=\xff" + host);
    refused("binary", QByteArray("\x16\x03\x01\x02\0\x01\0\x01\xfc", 9));
    refused("zero bytes", QByteArray(10, '\0'));

    const auto wrongHost = [&](const char *name, const QByteArray &lines) {
        QTest::newRow(name) << "GET /callback?code=a&state=b HTTP/1.1\r\n" + lines + "\r\n"
                            << 400 << "Bad host"_ba << false << QString() << QString();
    };
    wrongHost("no host", "Accept: */*\r\n");
    wrongHost("localhost", "Host: localhost:PORT\r\n");
    wrongHost("other port", "Host: 127.0.0.1:1\r\n");
    wrongHost("no port", "Host: 127.0.0.1\r\n");
    wrongHost("leading zero", "Host: 127.0.0.1:0PORT\r\n");
    wrongHost("other address", "Host: 127.0.0.2:PORT\r\n");
    wrongHost("rebinding name", "Host: evil.example:PORT\r\n");
    wrongHost("first of two", "Host: evil.example\r\nHost: 127.0.0.1:PORT\r\n");
    wrongHost("bare line feeds", "Accept: x\nHost: 127.0.0.1:PORT\r\n");
    wrongHost("space before the colon", "Host : 127.0.0.1:PORT\r\n");
    wrongHost("no-break space",
              "Host: \xc2\xa0"
              "127.0.0.1:PORT\r\n");

    const auto elsewhere = [&](const char *name, const QByteArray &target) {
        QTest::newRow(name) << "GET " + target + host << 404 << "Not found"_ba << false << QString()
                            << QString();
    };
    elsewhere("icon", "/favicon.ico");
    elsewhere("root", "/?code=a&state=b");
    elsewhere("capitals", "/Callback?code=a&state=b");
    elsewhere("whole address", "http://127.0.0.1:PORT/callback?code=a&state=b");

    const auto incomplete = [&](const char *name, const QByteArray &target) {
        QTest::newRow(name) << "GET " + target + host << 400 << "Missing code/state"_ba << true << QString()
                            << QString();
    };
    incomplete("no state", "/callback?code=abc");
    incomplete("no code", "/callback?state=xyz");
    incomplete("no query", "/callback");
    incomplete("empty query", "/callback?");
    incomplete("code without a value", "/callback?code&state=xyz");
    incomplete("state without a value", "/callback?code=abc&state");
    incomplete("error without a value", "/callback?code=abc&state=xyz&error");
    incomplete("first error decides", "/callback?error&error=x&code=abc&state=xyz");
    incomplete("half an escape", "/callback?code=abc&state=xyz&x=%4");
    incomplete("no escape", "/callback?code=ab%zzc&state=xyz");
    incomplete("escapes that are not UTF-8", "/callback?code=%ff&state=xyz");

    const auto denied = [&](const char *name, const QByteArray &target) {
        QTest::newRow(name) << "GET " + target + host << 200 << cancelled << true << QString() << QString();
    };
    denied("error", "/callback?error=access_denied&state=xyz");
    denied("error beside a code", "/callback?code=abc&state=xyz&error=x");
    denied("empty error", "/callback?error=&code=abc&state=xyz");
}

void TestLoopbackServer::answersEveryRequest()
{
    QFETCH(QByteArray, request);
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    QFETCH(bool, ends);
    QFETCH(QString, code);
    QFETCH(QString, state);
    Waiting waiting;
    const quint16 port = waiting.server->port();
    request.replace("PORT", QByteArray::number(port));

    const QByteArray answer = answerTo(*waiting.server, request);

    const bool isPage = body.startsWith('<');
    QCOMPARE(answer, expectedAnswer(status, isPage ? bodyOf(answer) : body));
    QVERIFY2(answer.contains(body), answer);
    if (!ends) {
        QVERIFY(!*waiting.result);
        answerTo(*waiting.server, getRequest(port, "/callback?code=late&state=r"));
        QTRY_VERIFY(*waiting.result);
        QCOMPARE(**waiting.result, Result(LoopbackServer::Callback { u"late"_s, u"r"_s }));
        return;
    }
    QTRY_VERIFY(*waiting.result);
    if (code.isNull())
        QCOMPARE(**waiting.result, Result(std::unexpected(LoopbackError::MalformedRequest)));
    else
        QCOMPARE(**waiting.result, Result(LoopbackServer::Callback { code, state }));
}

void TestLoopbackServer::judgesTheFirstBytesAlone()
{
    const qsizetype secondWord = QByteArray("GET /").size();
    for (qsizetype size = 1;; ++size) {
        Waiting waiting;
        const QByteArray request = getRequest(waiting.server->port(), "/callback?code=abc&state=xyz");
        if (size == request.size())
            break;
        const qsizetype wholeHost = request.indexOf("\r\nAccept");
        Browser browser(waiting.server->port());
        browser.socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        browser.socket.write(request.first(size));
        QTRY_VERIFY(browser.socket.bytesAvailable() > 0); // so that the rest comes late
        browser.socket.write(request.sliced(size));
        QTRY_VERIFY(browser.isAnswered());

        const QByteArray answer = browser.socket.readAll();
        if (size < secondWord)
            QCOMPARE(answer, expectedAnswer(400, "Bad request"));
        else if (size < wholeHost || size == wholeHost + 1) // a lone carriage return is part of the value
            QCOMPARE(answer, expectedAnswer(400, "Bad host"));
        else
            QVERIFY2(answer.contains(closeWindow), answer);
    }
}

void TestLoopbackServer::answersAHundredBrowsersAtOnce()
{
    Waiting waiting;
    std::vector<std::unique_ptr<Browser>> browsers;
    for (int i = 0; i < 100; ++i) {
        browsers.push_back(std::make_unique<Browser>(waiting.server->port()));
        browsers.back()->socket.write(getRequest(waiting.server->port(), "/favicon.ico"));
    }
    const Browser silent(waiting.server->port());
    for (const auto &browser : browsers) {
        QTRY_VERIFY_WITH_TIMEOUT(browser->isAnswered(), 20'000);
        QCOMPARE(browser->socket.readAll(), expectedAnswer(404, "Not found"));
    }
    QVERIFY(!*waiting.result);

    QVERIFY(answerTo(*waiting.server, getRequest(waiting.server->port(), "/callback?code=a&state=b"))
                .contains(closeWindow));

    QTRY_VERIFY(*waiting.result);
    QTRY_COMPARE(silent.socket.state(), QAbstractSocket::UnconnectedState);
}

void TestLoopbackServer::outlastsLongRequests_data()
{
    QTest::addColumn<QByteArray>("filler");
    QTest::addColumn<QByteArray>("answer");
    const QByteArray cookie = "Cookie: " + QByteArray(300'000, 'c') + "\r\n";
    QTest::newRow("host before the cut") << "Host: 127.0.0.1:PORT\r\n" + cookie << closeWindow;
    QTest::newRow("host behind it") << cookie + "Host: 127.0.0.1:PORT\r\n" << "Bad host"_ba;
}

void TestLoopbackServer::outlastsLongRequests()
{
    QFETCH(QByteArray, filler);
    QFETCH(QByteArray, answer);
    Waiting waiting;
    filler.replace("PORT", QByteArray::number(waiting.server->port()));

    const QByteArray got =
        answerTo(*waiting.server, "GET /callback?code=a&state=b HTTP/1.1\r\n" + filler + "\r\n");

    QVERIFY2(got.contains(answer), got);
    QVERIFY(got.endsWith(bodyOf(expectedAnswer(400, "Bad host"))) || got.endsWith("</html>\n"));
}

void TestLoopbackServer::swallowsWhatComesAfterTheAnswer()
{
    // a bare socket, since a QTcpSocket closes when the server has closed its side
    Waiting waiting;
    const int browser = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(waiting.server->port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    QCOMPARE(::connect(browser, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    const QByteArray request = getRequest(waiting.server->port(), "/callback?code=a&state=b");
    QCOMPARE(::send(browser, request.constData(), size_t(request.size()), 0), request.size());

    QByteArray answer;
    std::array<char, 4096> buffer {};
    const auto isAtEnd = [&] {
        const auto count = ::recv(browser, buffer.data(), buffer.size(), MSG_DONTWAIT);
        answer.append(buffer.data(), std::max<qsizetype>(count, 0));
        return count == 0;
    };
    QTRY_VERIFY(isAtEnd());
    QVERIFY2(answer.endsWith("</html>\n"), answer);
    QTRY_VERIFY(*waiting.result);
    waiting.server.reset();
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(::send(browser, "more", 4, MSG_NOSIGNAL), 4);
        QTest::qWait(5);
    }
    QVERIFY2(isAtEnd(), "the connection was reset");
    ::close(browser);
}

void TestLoopbackServer::answersABrowserThatOnlyListens()
{
    Waiting waiting;
    Browser browser(waiting.server->port());
    QTRY_COMPARE(browser.socket.state(), QAbstractSocket::ConnectedState);
    ::shutdown(static_cast<int>(browser.socket.socketDescriptor()), SHUT_WR);

    QTRY_VERIFY(browser.isAnswered());
    QCOMPARE(browser.socket.readAll(), expectedAnswer(400, "Bad request"));
    QTRY_VERIFY(*waiting.result);
    QCOMPARE(**waiting.result, Result(std::unexpected(LoopbackError::MalformedRequest)));
}

void TestLoopbackServer::endsWithABrowserThatSaysNothing()
{
    Waiting waiting;
    {
        Browser browser(waiting.server->port());
        QTRY_COMPARE(browser.socket.state(), QAbstractSocket::ConnectedState);
    }
    QTRY_VERIFY(*waiting.result);
    QCOMPARE(**waiting.result, Result(std::unexpected(LoopbackError::MalformedRequest)));
}

void TestLoopbackServer::takesTheCodeOfABrowserThatHasGone()
{
    Waiting waiting;
    {
        Browser browser(waiting.server->port());
        browser.socket.write(getRequest(waiting.server->port(), "/callback?code=a&state=b"));
        QVERIFY(browser.socket.waitForBytesWritten());
        browser.socket.abort();
    }
    QTRY_VERIFY(*waiting.result);
    QCOMPARE(**waiting.result, Result(LoopbackServer::Callback { u"a"_s, u"b"_s }));
}

void TestLoopbackServer::closesItsPort_data()
{
    QTest::addColumn<QString>("end");
    QTest::addColumn<int>("error"); // -1: none
    QTest::newRow("callback") << u"callback"_s << -1;
    QTest::newRow("time-out") << u"time-out"_s << int(LoopbackError::Timeout);
    QTest::newRow("stop") << u"stop"_s << int(LoopbackError::Cancelled);
    QTest::newRow("destruction") << u"destruction"_s << int(LoopbackError::Cancelled);
}

void TestLoopbackServer::closesItsPort()
{
    QFETCH(QString, end);
    QFETCH(int, error);
    Waiting waiting(end == "time-out"_L1 ? 1ms : longEnough);
    const quint16 port = waiting.server->port();
    QVERIFY(port != 0);

    if (end == "callback"_L1) {
        answerTo(*waiting.server, getRequest(port, "/callback?code=a&state=b"));
    } else if (end == "stop"_L1) {
        waiting.server->stop();
        waiting.server->stop();
    } else if (end == "destruction"_L1) {
        waiting.server.reset();
    }

    QTRY_VERIFY(*waiting.result);
    QCOMPARE((*waiting.result)->has_value(), error < 0);
    if (error >= 0)
        QCOMPARE(int((*waiting.result)->error()), error);
    Browser late(port);
    QTRY_COMPARE(late.socket.error(), QAbstractSocket::ConnectionRefusedError);
}

void TestLoopbackServer::showsTheLogo_data()
{
    QTest::addColumn<QByteArray>("content"); // null: no file
    QTest::addColumn<QByteArray>("element");
    const QByteArray fallback = "<div class=\"logo logo-fallback\">\xe2\x80\xba</div>";
    QTest::newRow("no file") << QByteArray() << fallback;
    QTest::newRow("empty file") << ""_ba << fallback;
    QTest::newRow("white space") << " \r\n\t"_ba << fallback;
    QTest::newRow("a declaration alone") << "<?xml version=\"1.0\"?>\n"_ba << fallback;
    QTest::newRow("not UTF-8") << "<svg>\xff</svg>"_ba << fallback;
    QTest::newRow("icon") << "<svg>\xc3\xa9</svg>"_ba << "<div class=\"logo\"><svg>\xc3\xa9</svg></div>"_ba;
    QTest::newRow("declarations") << "\n<?xml version=\"1.0\"?>\n<svg><?xml x?></svg> \n"_ba
                                  << "<div class=\"logo\"><svg></svg></div>"_ba;
}

void TestLoopbackServer::showsTheLogo()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, element);
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"icon.svg"_s));
    if (!content.isNull()) {
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
    }
    Waiting waiting(longEnough, file.fileName());

    const QByteArray answer =
        answerTo(*waiting.server, getRequest(waiting.server->port(), "/callback?code=a&state=b"));

    QVERIFY2(answer.contains("\n" + element + "\n<h1>Kestrel is connected</h1>\n" + closeWindow), answer);
    QCOMPARE(answer, expectedAnswer(200, bodyOf(answer)));
}

void TestLoopbackServer::failsWithoutAPort()
{
    rlimit before {};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit none = before;
    none.rlim_cur = 3; // no descriptor is left for a socket
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &none), 0);
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression(u"^LoopbackServer failed: "_s));
    const Waiting waiting;
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &before), 0);

    QVERIFY(*waiting.result);
    QCOMPARE(**waiting.result, Result(std::unexpected(LoopbackError::BindFailed)));
    QCOMPARE(waiting.server->port(), 0);
}

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestLoopbackServer)

#include "TestLoopbackServer.moc"
