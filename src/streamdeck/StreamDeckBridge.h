#pragma once
#include "hotkeys/HotkeyAction.h"
#include "streamdeck/MeetStateSnapshot.h"
#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QWebSocketServer>
#include <expected>
#include <functional>
#include <memory>

QT_BEGIN_NAMESPACE
class QWebSocket;
QT_END_NAMESPACE

namespace kestrel {

class DeckHandshake;
class MaskGuard;

/// Tells the state of the call to programs of this user on this machine and takes their commands, over
/// WebSocket on 127.0.0.1; docs/stream-deck.md describes it from the client's side. Web pages and other users
/// are refused, and no client can make it grow or wait. Owned by app/. Main thread only.
class StreamDeckBridge final : public QObject
{
    Q_OBJECT
public:
    explicit StreamDeckBridge(QObject *parent = nullptr);
    /// Cuts every connection; stop() ends them politely.
    ~StreamDeckBridge() override;

    /// What to do with a command, and the state that greets a client. Both may be empty; set them before
    /// start().
    std::function<void(HotkeyAction)> onCommand;
    std::function<MeetStateSnapshot()> stateProvider;

    /// Does nothing while it listens. A port that cannot be had is logged once, and tried again every ten
    /// seconds until stop(); another start() tries at once.
    void start(quint16 port);
    void stop();
    [[nodiscard]] bool isListening() const { return m_listener != nullptr; }

    /// Sends the state to every client unless it is what was sent last.
    void broadcast(const MeetStateSnapshot &snapshot);

private:
    class Listener;

    struct Connection
    {
        QWebSocket *client;
        QPointer<QTcpSocket> socket; ///< the client's own

        [[nodiscard]] bool isOpen() const;
    };

    /// The error is a description.
    [[nodiscard]] std::expected<void, QString> listen(quint16 port);
    void take(qintptr descriptor);
    void upgrade(QTcpSocket *socket);
    void adopt(QWebSocket *client);
    void forget(QWebSocket *client);
    void handle(const Connection &connection, const QString &message);
    void greet(const Connection &connection);
    static void send(const Connection &connection, const QByteArray &frame);

    std::unique_ptr<Listener> m_listener;
    QTimer m_listenAgain;
    quint16 m_takenPort = 0; ///< that is waited for, or none
    QTimer m_acceptAgain;
    QWebSocketServer m_protocol; ///< never listens: it is given sockets whose request was looked at
    QList<DeckHandshake *> m_handshakes; ///< in order of arrival
    QList<MaskGuard *> m_upgrading; ///< their sockets are with m_protocol, which answers in a later turn
    QList<Connection> m_connections; ///< in order of arrival
    QByteArray m_lastBroadcastPayload;
};

} // namespace kestrel
