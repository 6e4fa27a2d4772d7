#include "streamdeck/DeckHandshake.h"
#include "base/Log.h"
#include <algorithm>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr qsizetype longestHead = 8192;
constexpr auto headTime = 5s;
constexpr auto closingTime = 2s;

/// Whether the head names an Origin, empty or not: every web page does, on its browser's insistence.
bool hasOrigin(const QByteArray &head)
{
    // tolerant in what a line end and a name are, so that no other reader finds one that this does not
    QByteArray lines = head;
    const auto all = lines.replace('\r', '\n').split('\n');
    return std::ranges::any_of(all, [](const QByteArray &line) {
        const qsizetype colon = line.indexOf(':');
        return colon >= 0 && line.first(colon).trimmed().compare("origin", Qt::CaseInsensitive) == 0;
    });
}

} // namespace

DeckHandshake::DeckHandshake(qintptr descriptor, Answers answers, QObject *parent)
    : QObject(parent)
    , m_answers(std::move(answers))
    , m_socket(new QTcpSocket(this))
{
    m_socket->setSocketDescriptor(descriptor);
    m_socket->setReadBufferSize(longestHead + 1);
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
    const QByteArray head = m_socket->peek(longestHead + 1);
    const qsizetype end = head.indexOf("\r\n\r\n");
    if (hasOrigin(head))
        return refuse("403 Forbidden");
    if (end < 0 && head.size() > longestHead)
        return refuse("431 Request Header Fields Too Large");
    if (end < 0)
        return;
    // a client waits for the answer before it sends anything (RFC 6455, 4.1)
    if (end + 4 != head.size())
        return refuse("400 Bad Request");
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
