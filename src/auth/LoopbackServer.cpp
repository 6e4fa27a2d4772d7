#include "auth/LoopbackServer.h"
#include "auth/ResultPage.h"
#include "auth/Utf8.h"
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
#include <cctype>
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

std::optional<QString> percentDecode(QStringView text)
{
    const QByteArray encoded = text.toUtf8();
    const auto isHexDigit = [&](qsizetype at) {
        return at < encoded.size() && std::isxdigit(quint8(encoded[at]));
    };
    for (qsizetype at = encoded.indexOf('%'); at >= 0; at = encoded.indexOf('%', at + 1)) {
        if (!isHexDigit(at + 1) || !isHexDigit(at + 2))
            return {};
    }
    return fromStrictUtf8(QByteArray::fromPercentEncoding(encoded));
}

struct QueryItem
{
    QString name;
    std::optional<QString> value; ///< nothing without a "="
};

/// Nothing at all when any of it is not valid percent-encoding of UTF-8. Unlike in a form, "+" stands for
/// itself.
QList<QueryItem> parseQuery(QStringView query)
{
    QList<QueryItem> items;
    for (const QStringView part : query.tokenize(u'&')) {
        const qsizetype separator = part.indexOf(u'=');
        const auto name = percentDecode(separator < 0 ? part : part.first(separator));
        const auto value =
            separator < 0 ? std::optional(QString()) : percentDecode(part.sliced(separator + 1));
        if (!name || !value)
            return {};
        items.append({ *name, separator < 0 ? std::nullopt : value });
    }
    return items;
}

const QueryItem *firstNamed(const QList<QueryItem> &items, QLatin1StringView name)
{
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const QueryItem &item) { return item.name == name; });
    return found == items.end() ? nullptr : &*found;
}

/// The value of the first line that begins like a Host header, the request line included.
std::optional<QString> hostOf(const QStringList &lines)
{
    constexpr auto name = "host:"_L1;
    const auto line = std::find_if(lines.begin(), lines.end(), [&](const QString &candidate) {
        return candidate.toLower().startsWith(name);
    });
    if (line == lines.end())
        return {};
    QStringView value = QStringView(*line).sliced(name.size());
    const auto isBlank = [](QChar c) { return c == u' ' || c == u'\t'; };
    while (!value.isEmpty() && isBlank(value.front()))
        value = value.sliced(1);
    while (!value.isEmpty() && isBlank(value.back()))
        value.chop(1);
    return value.toString();
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
    Answer badRequest { response(400, "Bad request"), std::unexpected(LoopbackError::MalformedRequest) };
    const auto text = chunk ? fromStrictUtf8(*chunk) : std::nullopt;
    if (!text)
        return badRequest;
    const QStringList lines = text->split("\r\n"_L1);
    const QStringList words = lines.first().split(u' ', Qt::SkipEmptyParts);
    if (words.size() < 2 || words[0] != "GET"_L1)
        return badRequest;
    const auto host = hostOf(lines);
    if (!host || host->toLower() != u"127.0.0.1:%1"_s.arg(port()))
        return { response(400, "Bad host"), {} };
    if (!words[1].startsWith("/callback"_L1))
        return { response(404, "Not found"), {} };
    return answerToTarget(words[1]);
}

LoopbackServer::Answer LoopbackServer::answerToTarget(const QString &target)
{
    Answer incomplete { response(400, "Missing code/state"),
                        std::unexpected(LoopbackError::MalformedRequest) };
    const qsizetype mark = target.indexOf(u'?');
    const auto items = mark < 0 ? QList<QueryItem>() : parseQuery(QStringView(target).sliced(mark + 1));
    if (const auto *error = firstNamed(items, "error"_L1)) {
        if (!error->value)
            return incomplete;
        qCInfo(lcAuth).noquote() << "OAuth callback returned error" << errorForLog(*error->value);
        return { response(200, page(u"Sign-in cancelled."_s)),
                 std::unexpected(LoopbackError::MalformedRequest) };
    }
    const auto *code = firstNamed(items, "code"_L1);
    const auto *state = firstNamed(items, "state"_L1);
    if (!code || !code->value || !state || !state->value)
        return incomplete;
    return { response(200, page(u"You can close this window."_s)), Callback { *code->value, *state->value } };
}

QByteArray LoopbackServer::page(const QString &message)
{
    if (!m_logo)
        m_logo = logoElement(m_logoPath);
    return resultPage(message, *m_logo);
}

} // namespace kestrel
