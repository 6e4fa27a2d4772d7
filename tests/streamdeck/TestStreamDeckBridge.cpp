#include "base/Log.h"
#include "streamdeck/PeerOwner.h"
#include "streamdeck/RawClient.h"
#include "streamdeck/StreamDeckBridge.h"
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QScopeGuard>
#include <QTcpServer>
#include <QTest>
#include <QWebSocket>
#include <deque>
#include <memory>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace kestrel;
using namespace kestrel::test;

namespace {

QStringList s_log;

void collect(QtMsgType, const QMessageLogContext &context, const QString &message)
{
    if (QLatin1StringView(context.category) == "bridge"_L1)
        s_log.append(message);
}

quint16 freePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

QJsonObject parsed(const QString &text)
{
    return QJsonDocument::fromJson(text.toUtf8()).object();
}

/// A client of the kind that Qt programs have.
struct DeckClient
{
    explicit DeckClient(quint16 port)
    {
        QObject::connect(&socket, &QWebSocket::textMessageReceived, &socket,
                         [this](const QString &text) { received.append(text); });
        socket.open(QUrl(u"ws://127.0.0.1:%1"_s.arg(port)));
    }

    QStringList received;
    QWebSocket socket;
};

} // namespace

class TestStreamDeckBridge : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { qInstallMessageHandler(collect); }

    void init()
    {
        s_log.clear();
        actions.clear();
        bridge = std::make_unique<StreamDeckBridge>();
        bridge->onCommand = [this](HotkeyAction action) { actions.append(action); };
        bridge->stateProvider = [this] { return current; };
        // another test may have taken the port meanwhile
        for (int i = 0; i < 5 && !bridge->isListening(); ++i) {
            port = freePort();
            bridge->start(port);
        }
        QVERIFY(bridge->isListening());
    }

    void cleanup() { bridge.reset(); }

    void greetsAndTellsChanges()
    {
        DeckClient client(port);
        QTRY_COMPARE(client.received.size(), 1);
        const QJsonObject state { { u"inMeeting"_s, false },
                                  { u"micOn"_s, true },
                                  { u"cameraOn"_s, true },
                                  { u"handRaised"_s, false },
                                  { u"sharing"_s, false } };
        QCOMPARE(parsed(client.received[0]),
                 QJsonObject({ { u"type"_s, u"hello"_s }, { u"state"_s, state } }));

        const MeetStateSnapshot muted { .inMeeting = true, .micOn = false };
        bridge->broadcast(muted);
        bridge->broadcast(muted);
        DeckClient late(port);
        QTRY_COMPARE(late.received.size(), 1);
        bridge->broadcast(muted); // equal to the last one sent, whoever was there
        client.socket.sendTextMessage(u"{\"cmd\":\"state\",\"more\":1}"_s);
        QTRY_COMPARE(client.received.size(), 3);
        QCOMPARE(client.received[1],
                 u"{\"cameraOn\":true,\"handRaised\":false,\"inMeeting\":true,\"micOn\":false,"
                 "\"sharing\":false,\"type\":\"state\"}"_s);
        QVERIFY(parsed(client.received[2]).contains("state"_L1));
        bridge->broadcast({});
        QTRY_COMPARE(late.received.size(), 2);
    }

    void aBroadcastToNobodyIsNotRemembered()
    {
        bridge->broadcast({ .inMeeting = true });
        DeckClient client(port);
        QTRY_COMPARE(client.received.size(), 1);
        bridge->broadcast({ .inMeeting = true });
        QTRY_COMPARE(client.received.size(), 2);
    }

    void whatIsNoCommandIsLogged_data()
    {
        QTest::addColumn<QByteArray>("frames");
        QTest::addColumn<QString>("line");
        QTest::newRow("a number") << frame(Text, R"({"cmd":5})") << u"malformed message"_s;
        QTest::newRow("no command") << frame(Text, "{}") << u"malformed message"_s;
        QTest::newRow("an array") << frame(Text, R"(["cmd"])") << u"malformed message"_s;
        QTest::newRow("no JSON") << frame(Text, R"({"cmd":"join")") << u"malformed message"_s;
        QTest::newRow("deep JSON") << frame(Text, QByteArray(60'000, '[')) << u"malformed message"_s;
        QTest::newRow("binary") << frame(Binary, R"({"cmd":"join"})") << u"malformed message"_s;
        QTest::newRow("other case") << frame(Text, R"({"cmd":"MEETMUTE"})") << u"unknown cmd: MEETMUTE"_s;
        QTest::newRow("in pieces") << frame(Text, R"({"cmd")", { .isFinal = false }) + frame(Ping, "x")
                + frame(Continuation, R"(:"no\nway"})")
                                   << u"unknown cmd: no way"_s;
        QTest::newRow("long") << frame(Text, R"({"cmd":")" + QByteArray(60'000, 'x') + R"("})")
                              << u"unknown cmd: "_s + QString(300, u'x');
    }
    void whatIsNoCommandIsLogged()
    {
        QFETCH(const QByteArray, frames);
        QFETCH(const QString, line);
        RawClient client(port);
        client.send(requestLines + "\r\n");
        QTRY_VERIFY(client.isGreeted());
        client.send(frames);
        QTRY_VERIFY(s_log.contains(line));
        client.send(frame(Text, R"({"cmd":"meetLeave"})"));
        QTRY_COMPARE(actions, QList { HotkeyAction::meetLeave });
    }

    void wrongFramesEndTheConnection_data()
    {
        QTest::addColumn<QByteArray>("frames");
        QTest::addColumn<int>("closeCode");
        const QByteArray command = R"({"cmd":"join"})";
        QTest::newRow("without a mask") << frame(Text, command, { .isMasked = false }) << 1002;
        QTest::newRow("a mask, then none")
            << frame(Text, "{}") + frame(Text, command, { .isMasked = false }) << 1002;
        QTest::newRow("UTF-8 cut off") << frame(Text, command + "\xe2\x82") << 1007;
        QTest::newRow("UTF-8 surrogate") << frame(Text, "\xed\xa0\x80") << 1007;
        QTest::newRow("reserved bit") << frame(Text, command, { .reserved = 0x40 }) << 1002;
        QTest::newRow("unknown kind") << frame(3, command) << 1002;
        QTest::newRow("long ping") << frame(Ping, QByteArray(126, 'x')) << 1002;
        QTest::newRow("ping in pieces") << frame(Ping, "x", { .isFinal = false }) << 1002;
        QTest::newRow("continues nothing") << frame(Continuation, command) << 1002;
        QTest::newRow("frame too long") << frame(Text, QByteArray(65'537, ' ')) << 1009;
        QTest::newRow("promises 2^62 bytes") << QByteArray::fromHex("81ff400000000000000011223344") << 1009;
        QByteArray pieces = frame(Text, QByteArray(40'000, ' '), { .isFinal = false });
        pieces += frame(Continuation, QByteArray(40'000, ' '));
        QTest::newRow("message too long") << pieces << 1009;
        QTest::newRow("close code 1") << frame(Close, QByteArray("\0\1", 2)) << 1002;
    }
    void wrongFramesEndTheConnection()
    {
        QFETCH(const QByteArray, frames);
        QFETCH(const int, closeCode);
        DeckClient other(port);
        QTRY_COMPARE(other.received.size(), 1);
        RawClient client(port);
        client.send(requestLines + "\r\n");
        QTRY_VERIFY(client.isGreeted());
        client.received.clear();
        client.send(frames);
        QTRY_VERIFY(client.isClosed());
        QVERIFY(client.received.size() >= 4);
        QCOMPARE(quint8(client.received[0]), 0x88);
        QCOMPARE(int(qFromBigEndian<quint16>(client.received.constData() + 2)), closeCode);
        QCOMPARE(actions, {});
        QTRY_COMPARE(s_log.last(), u"client disconnected; remaining=1"_s);
        QCOMPARE(s_log.contains(u"malformed message"_s), closeCode == 1007);
        bridge->broadcast({ .inMeeting = true });
        QTRY_COMPARE(other.received.size(), 2);
    }

    void handshakesAreRefused_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<QByteArray>("answer");
        const QByteArray forbidden = "HTTP/1.1 403 Forbidden\r\n";
        QTest::newRow("a page") << requestLines + "Origin: https://page.example\r\n\r\n" << forbidden;
        QTest::newRow("a page on loopback") << requestLines + "Origin: http://127.0.0.1\r\n\r\n" << forbidden;
        QTest::newRow("a sandboxed page") << requestLines + "ORIGIN: null\r\n\r\n" << forbidden;
        QTest::newRow("an empty origin") << requestLines + "origin:\r\n\r\n" << forbidden;
        QTest::newRow("a blank before the colon") << requestLines + "Origin : x\r\n\r\n" << forbidden;
        QTest::newRow("another line end") << requestLines + "X: y\nOrigin: x\r\n\r\n" << forbidden;
        QTest::newRow("long head") << requestLines + "X: " + QByteArray(9000, 'x')
                                   << QByteArray("HTTP/1.1 431 ");
        QTest::newRow("impatient") << requestLines + "\r\n" + frame(Text, R"({"cmd":"join"})")
                                   << QByteArray("HTTP/1.1 400 ");
        QTest::newRow("no WebSocket")
            << QByteArray("GET / HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n") << QByteArray();
        QTest::newRow("no HTTP") << QByteArray("\x16\x03\x01\r\n\r\n") << QByteArray();
    }
    void handshakesAreRefused()
    {
        QFETCH(const QByteArray, request);
        QFETCH(const QByteArray, answer);
        const auto objects = bridge->findChildren<QObject *>().size();
        RawClient client(port);
        client.send(request);
        QTRY_VERIFY(client.isClosed());
        QTRY_COMPARE(bridge->findChildren<QObject *>().size(), objects); // nothing is kept of it
        QVERIFY2(client.received.startsWith(answer), client.received.constData());
        QVERIFY(!client.received.contains("101"));
        QVERIFY(!s_log.contains(u"client connected"_s));
        DeckClient other(port);
        QTRY_COMPARE(other.received.size(), 1);
        QCOMPARE(actions, {});
    }

    void aHandshakeMayArriveByteByByte()
    {
        RawClient client(port);
        QTRY_COMPARE(client.socket.state(), QAbstractSocket::ConnectedState);
        client.socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        for (const char byte : requestLines + "\r\n") {
            client.send(QByteArray(1, byte));
            QCoreApplication::processEvents();
        }
        QTRY_VERIFY(client.isGreeted());
    }

    void whoNeverFinishesMakesRoom()
    {
        std::deque<RawClient> silent;
        for (int i = 0; i < 65; ++i) {
            silent.emplace_back(port).send("GET / HTTP/1.1\r\n");
            QTRY_COMPARE(silent.back().socket.state(), QAbstractSocket::ConnectedState);
        }
        QTRY_VERIFY(silent.front().isClosed());
        QCOMPARE(std::ranges::count_if(silent, &RawClient::isClosed), 1);
        DeckClient client(port);
        QTRY_COMPARE(client.received.size(), 1);
    }

    void aThousandConnections()
    {
        std::deque<RawClient> clients;
        int refused = 0;
        for (int i = 0; i < 1000; ++i) {
            RawClient &client = clients.emplace_back(port);
            client.send(requestLines + "\r\n");
            if (i < 256) {
                QTRY_VERIFY(client.isGreeted());
                continue;
            }
            QTRY_VERIFY(client.isClosed());
            refused += client.received.startsWith("HTTP/1.1 503 ");
            clients.pop_back();
        }
        QCOMPARE(refused, 744);
        clients.pop_front();
        QTRY_COMPARE(s_log.last(), u"client disconnected; remaining=255"_s);
        DeckClient next(port);
        QTRY_COMPARE(next.received.size(), 1);
    }

    void whoDoesNotReadIsDropped_data()
    {
        QTest::addColumn<bool>("pings");
        QTest::newRow("the state") << false;
        QTest::newRow("the answers to its pings") << true;
    }
    void whoDoesNotReadIsDropped()
    {
        QFETCH(const bool, pings);
        DeckClient other(port);
        RawClient client(port);
        client.send(requestLines + "\r\n");
        QTRY_VERIFY(client.isGreeted());
        QTRY_COMPARE(other.received.size(), 1);
        client.socket.setReadBufferSize(1);
        const int small = 4096;
        setsockopt(int(client.socket.socketDescriptor()), SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
        client.socket.blockSignals(true);
        qsizetype sent = 0;
        // what the kernel holds for the two of them, and ours: far less than this
        constexpr qsizetype enough = 67'108'864;
        MeetStateSnapshot snapshot;
        const auto isDropped = [] { return s_log.contains(u"client disconnected; remaining=1"_s); };
        while (!isDropped() && sent < enough) {
            if (pings) {
                const QByteArray ping = frame(Ping, QByteArray(120, 'x'));
                client.send(ping.repeated(100));
                sent += 100 * ping.size();
            } else {
                for (int i = 0; i < 100; ++i) {
                    snapshot.micOn = !snapshot.micOn;
                    bridge->broadcast(snapshot);
                    sent += 100;
                }
            }
            QCoreApplication::processEvents();
        }
        QVERIFY(isDropped());
        other.received.clear();
        bridge->broadcast({ .inMeeting = true, .sharing = true });
        QTRY_VERIFY(!other.received.isEmpty() && other.received.last().contains("\"sharing\":true"_L1));
    }

    void stopsPolitelyAndStartsAgain()
    {
        DeckClient client(port);
        QTRY_COMPARE(client.received.size(), 1);
        RawClient halfWay(port);
        halfWay.send("GET / HTTP/1.1\r\n");
        QTRY_COMPARE(halfWay.socket.state(), QAbstractSocket::ConnectedState);
        bridge->broadcast({ .inMeeting = true });
        bridge->stop();
        bridge->stop();
        QCOMPARE(s_log.count(u"stopped"_s), 1);
        QVERIFY(!bridge->isListening());
        QTRY_COMPARE(client.socket.state(), QAbstractSocket::UnconnectedState);
        QCOMPARE(client.socket.closeCode(), QWebSocketProtocol::CloseCodeGoingAway);
        QTRY_VERIFY(halfWay.isClosed());
        QTRY_COMPARE(s_log.count(u"client disconnected; remaining=0"_s), 1);

        bridge->start(port);
        QCOMPARE(s_log.count(u"listening on 127.0.0.1:%1"_s.arg(port)), 2);
        DeckClient next(port);
        QTRY_COMPARE(next.received.size(), 1);
        bridge->broadcast({ .inMeeting = true });
        QTRY_COMPARE(next.received.size(), 2);
    }

    void aTakenPortIsTriedAgain()
    {
        bridge->stop();
        {
            QTcpServer other;
            QVERIFY(other.listen(QHostAddress::LocalHost, port));
            const auto before = s_log.size();
            for (int attempt = 0; attempt < 3; ++attempt)
                bridge->start(port);
            QCOMPARE(s_log.size(), before + 1);
            QVERIFY(s_log.last().startsWith("listen failed: "_L1));
            QVERIFY(!bridge->isListening());
        }
        bridge->start(port);
        QVERIFY(bridge->isListening());
        bridge->stop();
        bridge->start(0);
        QCOMPARE(s_log.last(), u"invalid port 0"_s);
    }

    void withoutDescriptorsItWaits()
    {
        RawClient client(port);
        client.send(requestLines + "\r\n");
        rlimit before {};
        QCOMPARE(getrlimit(RLIMIT_NOFILE, &before), 0);
        const int lowestFree = dup(0);
        ::close(lowestFree);
        const rlimit none { rlim_t(lowestFree), before.rlim_max };
        QCOMPARE(setrlimit(RLIMIT_NOFILE, &none), 0);
        const auto restore = qScopeGuard([&] { setrlimit(RLIMIT_NOFILE, &before); });
        QTRY_VERIFY(s_log.last().startsWith("listener: waiting("_L1));
        setrlimit(RLIMIT_NOFILE, &before);
        QTRY_VERIFY(client.isGreeted());
    }

    void aCommandMayStopTheBridge()
    {
        bridge->onCommand = [this](HotkeyAction) { bridge->stop(); };
        DeckClient client(port);
        QTRY_COMPARE(client.received.size(), 1);
        client.socket.sendTextMessage(u"{\"cmd\":\"join\"}"_s);
        client.socket.sendTextMessage(u"{\"cmd\":\"state\"}"_s);
        QTRY_COMPARE(client.socket.state(), QAbstractSocket::UnconnectedState);
        QCOMPARE(client.received.size(), 1);
    }

    void onlyThisUserIsServed_data()
    {
        QTest::addColumn<uint>("user");
        QTest::addColumn<bool>("isServed");
        QTest::newRow("this user") << uint(geteuid()) << true;
        QTest::newRow("nobody") << 65534U << false;
    }
    void onlyThisUserIsServed()
    {
        QFETCH(const uint, user);
        QFETCH(const bool, isServed);
        if (geteuid() != 0 && !isServed)
            QSKIP("only root can start a process of another user");
        // gone under its hands, the connection would end the shell with a signal
        const QString script = u"trap '' PIPE; exec 3<>/dev/tcp/127.0.0.1/%1; printf '%b' '%2' >&3; "
                               "head -n 1 <&3; echo end"_s;
        const auto request = QByteArray(requestLines + "\r\n").replace("\r\n", "\\r\\n");
        QProcess client;
        QByteArray output;
        connect(&client, &QProcess::readyReadStandardOutput, &client,
                [&] { output += client.readAllStandardOutput(); });
        client.setChildProcessModifier([user] {
            if (setuid(user) != 0)
                _exit(99);
        });
        client.start(u"/bin/bash"_s, { u"-c"_s, script.arg(port).arg(QString::fromLatin1(request)) });
        QTRY_VERIFY(output.contains("end\n"));
        QCOMPARE(output.startsWith("HTTP/1.1 101"), isServed);
        QCOMPARE(s_log.contains(u"connection refused: not of this user"_s), !isServed);
    }

    void bothWaysKnowTheOwner_data()
    {
        QTest::addColumn<QString>("address");
        QTest::newRow("IPv4") << u"127.0.0.1"_s;
        QTest::newRow("IPv4 through IPv6") << u"::ffff:127.0.0.1"_s;
    }
    void bothWaysKnowTheOwner()
    {
        QFETCH(const QString, address);
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QTcpSocket client;
        client.connectToHost(QHostAddress(address), server.serverPort());
        QTRY_VERIFY(server.hasPendingConnections());
        const auto *accepted = server.nextPendingConnection();
        const int descriptor = int(accepted->socketDescriptor());
        QCOMPARE(peerOwnerFromTables(descriptor), std::optional(geteuid()));
        if (!peerOwnerFromDiagnostics(descriptor))
            QSKIP("this kernel answers no questions about sockets");
        QCOMPARE(peerOwnerFromDiagnostics(descriptor), std::optional(geteuid()));
    }

private:
    std::unique_ptr<StreamDeckBridge> bridge;
    quint16 port = 0;
    QList<HotkeyAction> actions;
    MeetStateSnapshot current;
};

QTEST_GUILESS_MAIN(TestStreamDeckBridge)
#include "TestStreamDeckBridge.moc"
