#include "streamdeck/DeckHandshake.h"
#include "base/Log.h"
#include "streamdeck/HandshakeHead.h"
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr auto headTime = 5s;
constexpr auto closingTime = 2s;

} // namespace

DeckHandshake::DeckHandshake(qintptr descriptor, Answers answers, QObject *parent)
    : QObject(parent)
    , m_answers(std::move(answers))
    , m_socket(new QTcpSocket(this))
{
    m_socket->setSocketDescriptor(descriptor);
    m_socket->setReadBufferSize(longestHandshakeHead + 1);
    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, &DeckHandshake::abort);
    connect(m_socket, &QTcpSocket::readyRead, this, &DeckHandshake::read);
    connect(m_socket, &QTcpSocket::disconnected, this, &QObject::deleteLater);
    m_limit.start(headTime);
}

void DeckHandshake::abort()
{
    m_isWaiting = false;
    m_socket->abort();
    deleteLater();
}

void DeckHandshake::read()
{
    if (!m_isWaiting) {
        // closing with bytes unread would reset the connection under the answer
        m_socket->readAll();
        return;
    }
    switch (judgeHandshake(m_socket->peek(longestHandshakeHead + 1))) {
    case HandshakeVerdict::Incomplete:
        return;
    case HandshakeVerdict::HasOrigin:
        return refuse("403 Forbidden");
    case HandshakeVerdict::TooLong:
        return refuse("431 Request Header Fields Too Large");
    case HandshakeVerdict::Impatient:
        return refuse("400 Bad Request");
    case HandshakeVerdict::Complete:
        break;
    }
    if (!m_answers.hasRoom())
        return refuse("503 Service Unavailable");
    m_isWaiting = false;
    m_socket->disconnect(this);
    m_socket->setParent(nullptr);
    deleteLater();
    m_answers.accept(std::exchange(m_socket, nullptr));
}

void DeckHandshake::refuse(const char *status)
{
    qCWarning(lcBridge).noquote() << "handshake refused:" << status;
    m_isWaiting = false;
    m_limit.start(closingTime);
    m_socket->readAll();
    m_socket->write(QByteArray("HTTP/1.1 ") + status + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
    m_socket->disconnectFromHost();
}

} // namespace kestrel
