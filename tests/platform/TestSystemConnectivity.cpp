#include "base/Started.h"
#include "platform/linux/QtHttpTransport.h"
#include "platform/linux/SystemConnectivity.h"
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <algorithm>

// The bus that this runs on stands for the system's, with a played NetworkManager on it.

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr quint32 disconnected = 20;
constexpr quint32 connecting = 40;
constexpr quint32 connectedToSite = 60;
constexpr quint32 connected = 70;

const QString serviceName = u"org.freedesktop.NetworkManager"_s;

void say(quint32 state)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        serviceName, u"/org/freedesktop"_s, u"org.freedesktop.DBus.Mock"_s, u"SetGlobalConnectionState"_s);
    message.setArguments({ state });
    const QDBusMessage reply = QDBusConnection::systemBus().call(message);
    if (reply.type() != QDBusMessage::ReplyMessage)
        qFatal("%s", qPrintable(reply.errorMessage()));
}

} // namespace

class TestSystemConnectivity final : public QObject
{
    Q_OBJECT

    QProcess m_networkManager;

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", qgetenv("DBUS_SESSION_BUS_ADDRESS"));
        auto *bus = QDBusConnection::systemBus().interface();
        QVERIFY2(bus && !bus->isServiceRegistered(serviceName), "only on a bus of its own");
        m_networkManager.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_networkManager.start(
            u"/usr/bin/python3"_s,
            { u"-m"_s, u"dbusmock"_s, u"--system"_s, u"--template"_s, u"networkmanager"_s });
        QVERIFY(m_networkManager.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(bus->isServiceRegistered(serviceName), 20000);
    }
    void cleanupTestCase()
    {
        m_networkManager.kill();
        m_networkManager.waitForFinished();
    }

    void requestsWaitForTheNetworkAndGoWhenItIsBack()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        connect(&server, &QTcpServer::newConnection, &server, [&server] {
            auto *socket = server.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, socket, [socket] {
                socket->readAll();
                socket->write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
            });
        });
        HttpRequest request; // to this machine by an address that does not look like it
        request.url = QUrl(u"http://0.0.0.0:%1/"_s.arg(server.serverPort()));

        say(disconnected);
        SystemConnectivity connectivity;
        QtHttpTransport transport(connectivity);
        QVERIFY(!transport.isOnline());
        for (const quint32 state : { connectedToSite, connected }) {
            QList<decltype(started(transport.send(request)))> waiting;
            for (int minute = 0; minute < 100; ++minute)
                waiting.append(started(transport.send(request)));
            say(connecting);
            QTRY_COMPARE(std::ranges::count_if(waiting, [](const auto &each) { return each->has_value(); }),
                         99);
            QVERIFY(!*waiting.last());
            say(state);
            QTRY_VERIFY(*waiting.last());
            QVERIFY2(**waiting.last(), "answered");
            QVERIFY(transport.isOnline());
            say(disconnected);
            QTRY_VERIFY(!transport.isOnline());
        }
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestSystemConnectivity)
#include "TestSystemConnectivity.moc"
