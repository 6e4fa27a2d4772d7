#pragma once
#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>
#include <chrono>
#include <expected>
#include <optional>
#include <utility>

namespace kestrel {

struct HttpRequest
{
    QByteArray method { "GET" };
    QUrl url;
    QList<std::pair<QByteArray, QByteArray>> headers;
    QByteArray body;
    /// From the sending to the last byte of the answer; waiting for a network does not count.
    std::chrono::milliseconds timeout { std::chrono::seconds(60) };
    /// Whose request this is: of two that wait for a network with the same account and address (host and
    /// path), the newer one takes the place of the older.
    QString account;
};

struct HttpResponse
{
    /// Absent when what came back was not HTTP.
    std::optional<int> status;
    QByteArray body;

    [[nodiscard]] bool isSuccess() const { return status && *status >= 200 && *status <= 299; }
    /// The status, or -1 when the answer was not HTTP.
    [[nodiscard]] int statusOrMinusOne() const { return status.value_or(-1); }
    /// The body as text, empty when it is not valid UTF-8.
    [[nodiscard]] QString bodyText() const;
};

/// No answer, and why.
struct TransportError
{
    enum class Kind {
        Network, ///< no route, refused, reset, half an answer, TLS
        Timeout,
        AnswerTooLarge, ///< over HttpTransport::largestAnswer; the rest was not read
        Superseded, ///< a newer request for the same account and address took its place while both waited
    };
    Kind kind = Kind::Network;
    QString description;

    friend bool operator==(const TransportError &, const TransportError &) = default;
};

/// Whether the address is this machine itself (127.0.0.0/8, ::1, localhost), which needs no network.
[[nodiscard]] bool isLoopback(const QUrl &url);

/// Whether both have the same scheme, host and port: what carries a credential from one to the other.
[[nodiscard]] bool isSameOrigin(const QUrl &one, const QUrl &other);

/// Where a redirect's Location leads from `from`; nothing when it may not be followed: to anything but http
/// and https, from https to http, or to no address at all. User names and passwords in it are dropped.
[[nodiscard]] std::optional<QUrl> redirectTarget(const QUrl &from, const QByteArray &location);

/// HTTPS without cookies, cache or credentials of its own; TLS 1.2 is the floor. Redirects of a GET are
/// followed, to another origin without the Authorization header and never from https to http; all others are
/// given back as they are. Main thread only.
class HttpTransport : public QObject
{
    Q_OBJECT
public:
    static constexpr qint64 largestAnswer = 16LL * 1024 * 1024; ///< in bytes, decoded
    static constexpr int mostRedirects = 10;

    using QObject::QObject;

    [[nodiscard]] virtual bool isOnline() const = 0;

    /// Waits for a network where there is none, except for loopback addresses.
    [[nodiscard]] virtual QCoro::Task<std::expected<HttpResponse, TransportError>>
    send(HttpRequest request) = 0;

    /// The same wait by itself, under the same rule of the newer one: what it costs to prepare a request (an
    /// access token, say) is spent only when it can be sent.
    [[nodiscard]] virtual QCoro::Task<std::expected<void, TransportError>> waitForNetwork(QString account,
                                                                                          QUrl address) = 0;
};

} // namespace kestrel
