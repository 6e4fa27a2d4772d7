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
    void answersEveryRequest_data()
    {
        QTest::addColumn<QByteArray>("request"); // PORT stands for the port
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body"); // a paragraph: somewhere on the page
        QTest::addColumn<bool>("ends");
        QTest::addColumn<QString>("code"); // null: the wait ends with a malformed request
        QTest::addColumn<QString>("state");
        const QByteArray host = " HTTP/1.1\r\nHost: 127.0.0.1:PORT\r\n\r\n";

        const auto good = [&](const char *target, const QString &code, const QString &state) {
            QTest::newRow(target) << "GET " + QByteArray(target) + host << 200 << closeWindow << true << code
                                  << state;
        };
        good("/callback?iss=https://a&state=xyz&scope=x%20y&code=abc&&=", u"abc"_s, u"xyz"_s);
        good("/callback?code=1&code=2&state=3&state=4", u"1"_s, u"3"_s);
        good("/callback?%63ode=4%2F0A%3D%c3%a9&state=%7Ex", u"4/0A=é"_s, u"~x"_s);
        good("/callback?code=a+b&state==?", u"a+b"_s, u"=?"_s);
        good("/callback?code=&state=", u""_s, u""_s);
        good("/callback2/x?Error=no&CODE=1&code=abc&state=xyz", u"abc"_s, u"xyz"_s);

        const auto accepted = [](const char *name, const QByteArray &request) {
            QTest::newRow(name) << request << 200 << closeWindow << true << u"a"_s << u"b"_s;
        };
        accepted("no blank line", "GET /callback?code=a&state=b HTTP/1.1\r\nHost: 127.0.0.1:PORT");
        accepted("more spaces",
                 "  GET   /callback?code=a&state=b  HTTP/1.1 \r\nHOST:\t 127.0.0.1:PORT \t\r\n\r\n");
        accepted(
            "second host, a body",
            "GET /callback?code=a&state=b x\r\nhost:127.0.0.1:PORT\r\nHost: evil.example\r\n\r\n\xc3\xa9");

        const auto refused = [](const QByteArray &request, const char *body, bool ends) {
            QTest::addRow("%s", request.toPercentEncoding(" /:?=&").constData())
                << request << (body == QByteArray("Not found") ? 404 : 400) << QByteArray(body) << ends
                << QString() << QString();
        };
        for (const QByteArray &request :
             { "POST /callback?code=a&state=b" + host, "HEAD /callback?code=a&state=b" + host,
               "get /callback?code=a&state=b" + host, "GET\r\nHost: 127.0.0.1:PORT\r\n\r\n"_ba,
               "\r\nGET /callback?code=a&state=b" + host, "GET /callback?code=a&state=b&x=\xff" + host,
               QByteArray("\x16\x03\x01\x02\0\x01\0\x01\xfc", 9) })
            refused(request, "Bad request", true);
        for (const QByteArray &lines :
             { "Accept: */*"_ba, "Host: localhost:PORT"_ba, "Host: 127.0.0.1:1"_ba, "Host: 127.0.0.1"_ba,
               "Host: 127.0.0.1:0PORT"_ba, "Host: 127.0.0.2:PORT"_ba, "Host: evil.example:PORT"_ba,
               "Host: evil.example\r\nHost: 127.0.0.1:PORT"_ba, "Accept: x\nHost: 127.0.0.1:PORT"_ba,
               "Host : 127.0.0.1:PORT"_ba,
               "Host: \xc2\xa0"
               "127.0.0.1:PORT"_ba })
            refused("GET /callback?code=a&state=b HTTP/1.1\r\n" + lines + "\r\n\r\n", "Bad host", false);
        for (const QByteArray &target :
             { "/favicon.ico"_ba, "/?code=a&state=b"_ba, "/Callback?code=a&state=b"_ba,
               "http://127.0.0.1:PORT/callback?code=a&state=b"_ba })
            refused("GET " + target + host, "Not found", false);
        for (const QByteArray &query :
             { "code=abc"_ba, "state=xyz"_ba, ""_ba, "code&state=xyz"_ba, "code=abc&state"_ba,
               "code=abc&state=xyz&error"_ba, "error&error=x&code=abc&state=xyz"_ba,
               "code=abc&state=xyz&x=%4"_ba, "code=ab%zzc&state=xyz"_ba, "code=%ff&state=xyz"_ba })
            refused("GET /callback?" + query + host, "Missing code/state", true);

        for (const char *query : { "error=access_denied&state=xyz", "error=&code=abc&state=xyz" })
            QTest::newRow(query) << "GET /callback?" + QByteArray(query) + host << 200
                                 << "<p>Sign-in cancelled.</p>"_ba << true << QString() << QString();
    }

    void answersEveryRequest()
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

    void answersManyBrowsersAtOnce()
    {
        Waiting waiting;
        std::vector<std::unique_ptr<Browser>> browsers;
        for (int i = 0; i < 30; ++i) {
            browsers.push_back(std::make_unique<Browser>(waiting.server->port()));
            browsers.back()->socket.write(getRequest(waiting.server->port(), "/favicon.ico"));
        }
        const Browser silent(waiting.server->port());
        for (const auto &browser : browsers) {
            QTRY_VERIFY(browser->isAnswered());
            QCOMPARE(browser->socket.readAll(), expectedAnswer(404, "Not found"));
        }

        answerTo(*waiting.server, getRequest(waiting.server->port(), "/callback?code=a&state=b"));

        QTRY_VERIFY(*waiting.result);
        QTRY_COMPARE(silent.socket.state(), QAbstractSocket::UnconnectedState);
    }

    void outlastsLongRequests()
    {
        Waiting waiting;
        const QByteArray host = "Host: 127.0.0.1:" + QByteArray::number(waiting.server->port()) + "\r\n";
        const QByteArray cookie = "Cookie: " + QByteArray(300'000, 'c') + "\r\n";
        const QByteArray line = "GET /callback?code=a&state=b HTTP/1.1\r\n";

        QCOMPARE(answerTo(*waiting.server, line + cookie + host + "\r\n"), expectedAnswer(400, "Bad host"));
        QVERIFY(answerTo(*waiting.server, line + host + cookie + "\r\n").endsWith("</html>\n"));
    }

    void swallowsWhatComesAfterTheAnswer()
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

    void endsWithABrowserThatGoes_data()
    {
        QTest::addColumn<bool>("asks");
        QTest::newRow("without a word") << false;
        QTest::newRow("before its answer") << true;
    }

    void endsWithABrowserThatGoes()
    {
        QFETCH(bool, asks);
        Waiting waiting;
        {
            Browser browser(waiting.server->port());
            QTRY_COMPARE(browser.socket.state(), QAbstractSocket::ConnectedState);
            if (asks) {
                browser.socket.write(getRequest(waiting.server->port(), "/callback?code=a&state=b"));
                QVERIFY(browser.socket.waitForBytesWritten());
            }
            browser.socket.abort();
        }
        QTRY_VERIFY(*waiting.result);
        QCOMPARE(**waiting.result,
                 asks ? Result(LoopbackServer::Callback { u"a"_s, u"b"_s })
                      : Result(std::unexpected(LoopbackError::MalformedRequest)));
    }

    void closesItsPort_data()
    {
        QTest::addColumn<QString>("end");
        QTest::addColumn<int>("error"); // -1: none
        QTest::newRow("callback") << u"callback"_s << -1;
        QTest::newRow("time-out") << u"time-out"_s << int(LoopbackError::Timeout);
        QTest::newRow("stop") << u"stop"_s << int(LoopbackError::Cancelled);
        QTest::newRow("destruction") << u"destruction"_s << int(LoopbackError::Cancelled);
    }

    void closesItsPort()
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

    void showsTheLogo()
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath(u"icon.svg"_s));
        const auto page = [&](const QByteArray &logo) {
            if (file.open(QIODevice::WriteOnly))
                file.write(logo);
            file.close();
            const Waiting waiting(longEnough, file.fileName());
            return answerTo(*waiting.server, getRequest(waiting.server->port(), "/callback?code=a&state=b"));
        };
        const QByteArray title = "\n<h1>Kestrel is connected</h1>\n" + closeWindow;

        QVERIFY(page("\n<?xml version=\"1.0\"?>\n<svg>\xc3\xa9</svg> \n")
                    .contains("\n<div class=\"logo\"><svg>\xc3\xa9</svg></div>" + title));
        QVERIFY(page("<svg>\xff</svg>")
                    .contains("\n<div class=\"logo logo-fallback\">\xe2\x80\xba</div>" + title));
    }

    void failsWithoutAPort()
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
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestLoopbackServer)

#include "TestLoopbackServer.moc"
