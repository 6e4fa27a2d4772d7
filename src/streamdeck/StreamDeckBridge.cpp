#include "streamdeck/StreamDeckBridge.h"
#include "base/Log.h"
#include "streamdeck/DeckCommand.h"
#include "streamdeck/DeckHandshake.h"
#include "streamdeck/MaskGuard.h"
#include "streamdeck/PeerOwner.h"
#include <QHostAddress>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkProxy>
#include <QTcpSocket>
#include <QWebSocket>
#include <algorithm>
#include <chrono>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr qsizetype mostClients = 256;
constexpr qsizetype mostHandshakes = 64;
constexpr quint64 longestMessage = 65'536;
constexpr qint64 mostUnsent = 262'144;
constexpr auto closingTime = 2s;
constexpr auto listenAgainEvery = 10s;

QJsonObject toJson(const MeetStateSnapshot &snapshot)
{
    return { { u"inMeeting"_s, snapshot.inMeeting },
             { u"micOn"_s, snapshot.micOn },
             { u"cameraOn"_s, snapshot.cameraOn },
             { u"handRaised"_s, snapshot.handRaised },
             { u"sharing"_s, snapshot.sharing } };
}

/// Members sorted by key, which QJsonObject keeps them in.
QByteArray compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

/// A message as the bytes of its one frame (RFC 6455, 5.2).
QByteArray textFrame(const QByteArray &json)
{
    QByteArray frame(1, '\x81');
    if (json.size() < 126) {
        frame.append(char(json.size()));
    } else {
        frame.append('\x7e');
        frame.append(char(json.size() >> 8)).append(char(json.size()));
    }
    return frame + json;
}

} // namespace

bool StreamDeckBridge::Connection::isOpen() const
{
    return socket && client->state() == QAbstractSocket::ConnectedState;
}

class StreamDeckBridge::Listener final : public QTcpServer
{
public:
    explicit Listener(std::function<void(qintptr)> take)
        : m_take(std::move(take))
    {
        setProxy(QNetworkProxy::NoProxy);
        setListenBacklogSize(128);
    }

protected:
    void incomingConnection(qintptr descriptor) override { m_take(descriptor); }

private:
    std::function<void(qintptr)> m_take;
};

StreamDeckBridge::StreamDeckBridge(QObject *parent)
    : QObject(parent)
    , m_protocol(u"Kestrel"_s, QWebSocketServer::NonSecureMode, this)
{
    m_protocol.setMaxPendingConnections(int(mostClients));
    connect(&m_protocol, &QWebSocketServer::newConnection, this, [this] {
        while (auto *client = m_protocol.nextPendingConnection())
            adopt(client);
    });
    m_listenAgain.setSingleShot(true);
    m_listenAgain.setInterval(listenAgainEvery);
    m_listenAgain.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_listenAgain, &QTimer::timeout, this, [this] { start(m_takenPort); });
    m_acceptAgain.setSingleShot(true);
    connect(&m_acceptAgain, &QTimer::timeout, this, [this] {
        if (!m_listener)
            return;
        qCInfo(lcBridge) << "listener: ready";
        m_listener->resumeAccepting();
    });
}

StreamDeckBridge::~StreamDeckBridge()
{
    m_protocol.disconnect(this);
    for (auto *client : findChildren<QWebSocket *>()) {
        client->disconnect(this);
        delete client;
    }
    for (const auto *guard : std::as_const(m_upgrading))
        guard->socket().disconnect(this);
}

void StreamDeckBridge::start(quint16 port)
{
    if (m_listener)
        return;
    if (port == 0) {
        qCCritical(lcBridge) << "invalid port" << port;
        return;
    }
    const auto listening = listen(port);
    // of one and the same trouble, said when it begins
    if (!listening && std::exchange(m_takenPort, port) != port)
        qCCritical(lcBridge).noquote() << "listen failed:" << errorForLog(listening.error());
    if (!listening)
        m_listenAgain.start();
}

std::expected<void, QString> StreamDeckBridge::listen(quint16 port)
{
    auto listener = std::make_unique<Listener>([this](qintptr descriptor) { take(descriptor); });
    // QTcpServer sets SO_REUSEADDR
    if (!listener->listen(QHostAddress::LocalHost, port))
        return std::unexpected(listener->errorString());
    m_takenPort = 0;
    m_listenAgain.stop();
    // out of descriptors, say: the listener pauses itself then
    connect(listener.get(), &QTcpServer::acceptError, this, [this] {
        qCInfo(lcBridge).noquote().nospace()
            << "listener: waiting(" << errorForLog(m_listener->errorString()) << ')';
        m_acceptAgain.start(1s);
    });
    m_listener = std::move(listener);
    qCInfo(lcBridge).noquote().nospace() << "listening on 127.0.0.1:" << port;
    qCInfo(lcBridge) << "listener: ready";
    return {};
}

void StreamDeckBridge::stop()
{
    m_takenPort = 0;
    m_listenAgain.stop();
    if (!m_listener && m_connections.isEmpty())
        return;
    m_acceptAgain.stop();
    m_listener.reset();
    for (auto *handshake : std::exchange(m_handshakes, {}))
        handshake->abort();
    for (const auto *guard : std::exchange(m_upgrading, {}))
        guard->socket().abort();
    for (const auto &connection : std::exchange(m_connections, {}))
        connection.client->close(QWebSocketProtocol::CloseCodeGoingAway);
    m_lastBroadcastPayload.clear();
    qCInfo(lcBridge) << "stopped";
    qCInfo(lcBridge) << "listener: cancelled";
}

void StreamDeckBridge::take(qintptr descriptor)
{
    if (peerOwner(int(descriptor)) != geteuid()) {
        qCWarning(lcBridge) << "connection refused: not of this user";
        ::close(int(descriptor));
        return;
    }
    // a client of ours is done at once; who came first and still is not, was never going to be
    const auto waiting = std::ranges::count_if(m_handshakes, &DeckHandshake::isWaiting);
    if (waiting >= mostHandshakes)
        (*std::ranges::find_if(m_handshakes, &DeckHandshake::isWaiting))->abort();
    auto *handshake =
        new DeckHandshake(descriptor,
                          { [this] { return m_connections.size() + m_upgrading.size() < mostClients; },
                            [this](QTcpSocket *socket) { upgrade(socket); } },
                          this);
    m_handshakes.append(handshake);
    connect(handshake, &QObject::destroyed, this, [this, handshake] { m_handshakes.removeOne(handshake); });
}

void StreamDeckBridge::upgrade(QTcpSocket *socket)
{
    socket->setParent(&m_protocol);
    socket->setReadBufferSize(qint64(2 * longestMessage));
    // the state of a key must not wait for the acknowledgement of the one before
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    auto *guard = new MaskGuard(*socket);
    m_upgrading.append(guard);
    // until it is adopted: what Qt refuses, it only closes
    connect(socket, &QTcpSocket::disconnected, this, [this, socket, guard] {
        m_upgrading.removeOne(guard);
        socket->deleteLater();
    });
    m_protocol.handleConnection(socket);
    Q_EMIT socket->readyRead();
}

void StreamDeckBridge::adopt(QWebSocket *client)
{
    const auto found = std::ranges::find_if(m_upgrading, [client](const MaskGuard *guard) {
        return guard->socket().peerPort() == client->peerPort()
            && guard->socket().peerAddress() == client->peerAddress();
    });
    if (found == m_upgrading.end()) {
        client->abort();
        client->deleteLater();
        return;
    }
    MaskGuard *guard = *found;
    m_upgrading.erase(found);
    guard->socket().disconnect(this);

    client->setParent(this);
    client->setMaxAllowedIncomingFrameSize(longestMessage);
    client->setMaxAllowedIncomingMessageSize(longestMessage);
    guard->open(
        [client] {
            client->close(QWebSocketProtocol::CloseCodeProtocolError, u"A client masks its frames"_s);
        },
        [client] {
            // pongs pile up too when nobody reads them
            if (client->bytesToWrite() > mostUnsent)
                client->abort();
        });
    const Connection connection { client, &guard->socket() };
    m_connections.append(connection);
    // whoever closes: a client that does not read what is left is not waited for
    connect(client, &QWebSocket::aboutToClose, client,
            [client] { QTimer::singleShot(closingTime, client, &QWebSocket::abort); });
    connect(client, &QWebSocket::disconnected, this, [this, client] { forget(client); });
    connect(client, &QWebSocket::textMessageReceived, this,
            [this, connection](const QString &message) { handle(connection, message); });
    connect(client, &QWebSocket::binaryMessageReceived, this,
            [] { qCCritical(lcBridge) << "malformed message"; });
    qCInfo(lcBridge) << "client connected";
    greet(connection);
}

void StreamDeckBridge::forget(QWebSocket *client)
{
    m_connections.removeIf([client](const Connection &connection) { return connection.client == client; });
    if (client->closeCode() == QWebSocketProtocol::CloseCodeWrongDatatype)
        qCCritical(lcBridge) << "malformed message";
    qCInfo(lcBridge).nospace() << "client disconnected; remaining=" << m_connections.size();
    client->deleteLater();
}

void StreamDeckBridge::handle(const Connection &connection, const QString &message)
{
    // what came before a stop() is not carried out after it
    if (message.isEmpty() || !connection.isOpen())
        return;
    const auto command = readDeckCommand(message);
    if (!command) {
        qCCritical(lcBridge) << "malformed message";
    } else if (command->asksForState()) {
        greet(connection);
    } else if (command->action) {
        qCInfo(lcBridge).noquote() << "cmd:" << command->name;
        if (onCommand)
            onCommand(*command->action);
    } else {
        qCInfo(lcBridge).noquote() << "unknown cmd:" << errorForLog(command->name);
    }
}

void StreamDeckBridge::greet(const Connection &connection)
{
    QJsonObject hello { { u"type"_s, u"hello"_s } };
    if (stateProvider)
        hello.insert(u"state"_s, toJson(stateProvider()));
    send(connection, textFrame(compact(hello)));
}

void StreamDeckBridge::broadcast(const MeetStateSnapshot &snapshot)
{
    if (m_connections.isEmpty())
        return;
    QJsonObject state = toJson(snapshot);
    state.insert(u"type"_s, u"state"_s);
    const QByteArray payload = compact(state);
    if (payload == m_lastBroadcastPayload)
        return;
    m_lastBroadcastPayload = payload;
    // a client that is dropped while this runs leaves the list
    const QByteArray frame = textFrame(payload);
    for (const auto &connection : QList(m_connections))
        send(connection, frame);
}

/// Straight into the kernel where nothing waits before it: every write of a QTcpSocket wakes the event loop
/// twice, which for many clients takes longer than the sending.
void StreamDeckBridge::send(const Connection &connection, const QByteArray &frame)
{
    if (!connection.isOpen())
        return;
    QTcpSocket &socket = *connection.socket;
    ssize_t sent = 0;
    if (socket.bytesToWrite() == 0)
        sent = ::send(int(socket.socketDescriptor()), frame.constData(), size_t(frame.size()),
                      MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent < frame.size())
        socket.write(frame.sliced(std::max<ssize_t>(sent, 0)));
    if (connection.client->bytesToWrite() > mostUnsent)
        connection.client->abort();
}

} // namespace kestrel
