#include "auth/LoopbackServer.h"
#include "auth/ResultPage.h"
#include "base/Log.h"
#include <QCoreApplication>
#include <QCoro/QCoroFuture>
#include <QHostAddress>
#include <QNetworkProxy>
#include <QPointer>
#include <QSocketNotifier>
#include <QTcpServer>
#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <functional>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr qsizetype longestChunk = 65536;
/// How long a browser may take to close its side after it was answered.
constexpr auto closingTime = 2s;

QByteArray response(int status, const QByteArray &body)
{
    return "HTTP/1.1 " + QByteArray::number(status)
        + " OK\r\n"
          "Content-Type: text/html; charset=utf-8\r\n"
          "Content-Length: "
        + QByteArray::number(body.size())
        + "\r\n"
          "Connection: close\r\n"
          "Cache-Control: no-store\r\n"
          "\r\n"
        + body;
}

bool isFromThisMachine(int descriptor)
{
    sockaddr_in peer {};
    socklen_t size = sizeof peer;
    if (getpeername(descriptor, reinterpret_cast<sockaddr *>(&peer), &size) != 0
        || peer.sin_family != AF_INET)
        return false;
    return QHostAddress(ntohl(peer.sin_addr.s_addr)).isLoopback();
}

} // namespace

/// Accepts connections as bare descriptors. A QTcpSocket would not do: it can neither answer a peer that has
/// closed its sending side nor close its own sending side alone.
class LoopbackServer::Listener final : public QTcpServer
{
public:
    explicit Listener(std::function<void(int)> accept)
        : m_accept(std::move(accept))
    {
        setProxy(QNetworkProxy::NoProxy);
        setListenBacklogSize(128);
    }

protected:
    void incomingConnection(qintptr descriptor) override { m_accept(static_cast<int>(descriptor)); }

private:
    std::function<void(int)> m_accept;
};

/// One browser connection: reads once, answers, closes its sending side, and swallows what else comes until
/// the browser closes too; closing with bytes unread would reset the connection under the answer. Belongs to
/// the server until it was answered, and to itself from then on.
class LoopbackServer::Connection final : public QObject
{
public:
    Connection(int descriptor, LoopbackServer &server)
        : QObject(server.m_connections.get())
        , m_descriptor(descriptor)
        , m_server(&server)
        , m_readable(descriptor, QSocketNotifier::Read)
        , m_writable(descriptor, QSocketNotifier::Write)
    {
        m_writable.setEnabled(false);
        connect(&m_readable, &QSocketNotifier::activated, this, [this] { read(); });
        connect(&m_writable, &QSocketNotifier::activated, this, [this] { write(); });
    }

    ~Connection() override
    {
        m_readable.setEnabled(false);
        m_writable.setEnabled(false);
        ::close(m_descriptor);
    }

private:
    void read()
    {
        std::array<char, longestChunk> buffer;
        const auto count = recv(m_descriptor, buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (count < 0 && (errno == EAGAIN || errno == EINTR))
            return;
        m_peerHasEnded = count <= 0;
        if (m_peerHasEnded)
            m_readable.setEnabled(false);
        if (!m_answer) {
            m_answer = m_server->answerTo(m_peerHasEnded ? std::nullopt
                                                         : std::optional(QByteArray(buffer.data(), count)));
            write();
        } else if (m_peerHasEnded && !m_server) {
            deleteLater();
        }
    }

    void write()
    {
        QByteArray &bytes = m_answer->bytes;
        const auto count =
            send(m_descriptor, bytes.constData(), size_t(bytes.size()), MSG_DONTWAIT | MSG_NOSIGNAL);
        const bool canGoOn = count >= 0 || errno == EAGAIN || errno == EINTR;
        bytes.remove(0, std::max<qsizetype>(count, 0));
        // a browser that has gone does not take back what it brought
        if (bytes.isEmpty() || !canGoOn)
            leaveServer();
        else
            m_writable.setEnabled(true);
    }

    void leaveServer()
    {
        m_writable.setEnabled(false);
        ::shutdown(m_descriptor, SHUT_WR);
        setParent(QCoreApplication::instance());
        QTimer::singleShot(m_peerHasEnded ? 0ms : closingTime, this, &QObject::deleteLater);
        if (auto *server = std::exchange(m_server, nullptr); m_answer->outcome)
            server->finish(*m_answer->outcome);
    }

    int m_descriptor;
    LoopbackServer *m_server; ///< null once it was answered; until then the server outlives this
    QSocketNotifier m_readable;
    QSocketNotifier m_writable;
    std::optional<Answer> m_answer;
    bool m_peerHasEnded = false;
};

LoopbackServer::LoopbackServer(QString logoPath, QObject *parent)
    : QObject(parent)
    , m_logoPath(std::move(logoPath))
{
    m_timeout.setSingleShot(true);
    connect(&m_timeout, &QTimer::timeout, this, [this] { finish(std::unexpected(LoopbackError::Timeout)); });
}

LoopbackServer::~LoopbackServer()
{
    stop();
}

QString LoopbackServer::defaultLogoPath()
{
    return u":/kestrel/icon-source.svg"_s;
}

std::expected<void, LoopbackError> LoopbackServer::start()
{
    if (m_listener)
        return {};
    m_connections = std::make_unique<QObject>();
    m_listener = std::make_unique<Listener>([this](int descriptor) {
        if (isFromThisMachine(descriptor))
            new Connection(descriptor, *this);
        else
            ::close(descriptor);
    });
    const auto fail = [this] {
        if (!m_listener)
            return;
        qCCritical(lcAuth).noquote() << "LoopbackServer failed:" << errorForLog(m_listener->errorString());
        finish(std::unexpected(LoopbackError::BindFailed));
    };
    if (!m_listener->listen(QHostAddress::LocalHost)) {
        fail();
        return std::unexpected(LoopbackError::BindFailed);
    }
    // queued: it ends the listener that says so
    connect(m_listener.get(), &QTcpServer::acceptError, this, fail, Qt::QueuedConnection);
    return {};
}

QCoro::Task<LoopbackServer::Result> LoopbackServer::waitForCallback(std::chrono::milliseconds timeout)
{
    if (const auto started = start(); !started)
        co_return std::unexpected(started.error());
    m_timeout.start(timeout);
    auto &waiting = m_waiting.emplace();
    waiting.start();
    co_return co_await waiting.future();
}

quint16 LoopbackServer::port() const
{
    return m_listener ? m_listener->serverPort() : 0;
}

void LoopbackServer::stop()
{
    finish(std::unexpected(LoopbackError::Cancelled));
}

void LoopbackServer::finish(const Result &result)
{
    m_timeout.stop();
    m_listener.reset();
    m_connections.reset();
    if (auto waiting = std::exchange(m_waiting, std::nullopt)) {
        waiting->addResult(result);
        waiting->finish();
    }
}

LoopbackServer::Answer LoopbackServer::answerTo(const std::optional<QByteArray> &chunk)
{
    using Kind = RedirectFault::Kind;
    const auto callback = chunk ? readRedirect(*chunk, port()) : std::unexpected(RedirectFault());
    if (callback)
        return { response(200, page(u"You can close this window."_s)), *callback };
    const Result malformed = std::unexpected(LoopbackError::MalformedRequest);
    switch (callback.error().kind) {
    case Kind::Unreadable:
        break;
    case Kind::BadHost:
        return { response(400, "Bad host"), {} };
    case Kind::WrongPath:
        return { response(404, "Not found"), {} };
    case Kind::Incomplete:
        return { response(400, "Missing code/state"), malformed };
    case Kind::Denied:
        qCInfo(lcAuth).noquote() << "OAuth callback returned error" << errorForLog(callback.error().error);
        return { response(200, page(u"Sign-in cancelled."_s)), malformed };
    }
    return { response(400, "Bad request"), malformed };
}

QByteArray LoopbackServer::page(const QString &message)
{
    if (!m_logo)
        m_logo = logoElement(m_logoPath);
    return resultPage(message, *m_logo);
}

} // namespace kestrel
