#include "streamdeck/plugin/BridgeClient.h"
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkProxy>
#include <QUrl>
#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr auto shortestPause = 500ms;
constexpr auto longestPause = 8000ms;

} // namespace

BridgeClient::BridgeClient(quint16 port, QObject *parent)
    : QObject(parent)
    , m_port(port)
    , m_pause(shortestPause)
{
    m_socket.setProxy(QNetworkProxy::NoProxy);
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &BridgeClient::connectNow);
    connect(&m_socket, &QWebSocket::connected, this, [this] { m_pause = shortestPause; });
    connect(&m_socket, &QWebSocket::textMessageReceived, this, &BridgeClient::read);
    connect(&m_socket, &QWebSocket::stateChanged, this, [this](QAbstractSocket::SocketState state) {
        if (state == QAbstractSocket::UnconnectedState)
            retryLater();
    });
    connectNow();
}

BridgeClient::~BridgeClient()
{
    // a socket that goes tells its end
    m_socket.disconnect(this);
}

bool BridgeClient::send(QLatin1StringView command)
{
    if (m_socket.state() != QAbstractSocket::ConnectedState) {
        m_pause = shortestPause;
        if (m_retry.isActive())
            connectNow();
        return false;
    }
    m_socket.sendTextMessage(u"{\"cmd\":\"%1\"}"_s.arg(command));
    return true;
}

void BridgeClient::connectNow()
{
    m_retry.stop();
    m_socket.open(QUrl(u"ws://127.0.0.1:%1"_s.arg(m_port)));
}

void BridgeClient::retryLater()
{
    // told twice by some ends
    if (m_retry.isActive())
        return;
    m_retry.start(m_pause);
    m_pause = std::min(m_pause * 2, longestPause);
    set({});
}

/// The greeting nests the state, a change has it flat.
void BridgeClient::read(const QString &message)
{
    const QJsonObject object = QJsonDocument::fromJson(message.toUtf8()).object();
    const QString type = object.value("type"_L1).toString();
    const QJsonObject state = type == "hello"_L1 ? object.value("state"_L1).toObject() : object;
    if (type != "hello"_L1 && type != "state"_L1)
        return;
    const MeetStateSnapshot unknown;
    set(MeetStateSnapshot { .inMeeting = state.value("inMeeting"_L1).toBool(unknown.inMeeting),
                            .micOn = state.value("micOn"_L1).toBool(unknown.micOn),
                            .cameraOn = state.value("cameraOn"_L1).toBool(unknown.cameraOn),
                            .handRaised = state.value("handRaised"_L1).toBool(unknown.handRaised),
                            .sharing = state.value("sharing"_L1).toBool(unknown.sharing) });
}

void BridgeClient::set(const std::optional<MeetStateSnapshot> &snapshot)
{
    if (snapshot == m_snapshot)
        return;
    m_snapshot = snapshot;
    Q_EMIT changed();
}

} // namespace kestrel
