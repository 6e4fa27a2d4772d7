#include "platform/linux/QtHttpTransport.h"
#include "base/Log.h"
#include "platform/Connectivity.h"
#include "platform/linux/GzipDecoder.h"
#include <QCoro/QCoroFuture>
#include <QNetworkAccessManager>
#include <QNetworkCookie>
#include <QNetworkCookieJar>
#include <QNetworkReply>
#include <QPointer>
#include <QSslConfiguration>
#include <QTimer>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

using Answer = std::expected<HttpResponse, TransportError>;

/// Google compresses its answers only for programs whose name says that they can take it.
const QByteArray userAgent = "Kestrel/" KESTREL_VERSION " (gzip)";

/// In bytes. Many answers may come in together, and the event loop must run while they are unpacked.
constexpr qsizetype unpackedAtATime = 2048;

TransportError transportClosed()
{
    return { TransportError::Kind::Network, u"The connection was closed."_s };
}

TransportError answerTooLarge()
{
    return { TransportError::Kind::AnswerTooLarge, u"answer too large"_s };
}

/// Keeps no cookie and has none to send.
class NoCookies final : public QNetworkCookieJar
{
public:
    using QNetworkCookieJar::QNetworkCookieJar;

    [[nodiscard]] QList<QNetworkCookie> cookiesForUrl(const QUrl &) const override { return {}; }
    bool setCookiesFromUrl(const QList<QNetworkCookie> &, const QUrl &) override { return false; }
};

bool isRedirect(int status)
{
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

/// A header that could end its own line would let an account's token write headers of its own.
bool isOneLine(const QByteArray &text)
{
    return std::none_of(text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
}

/// Whether the reply is no whole answer. Qt also counts 401, 503 and the like as errors, which are answers to
/// us.
bool isBroken(const QNetworkReply &reply, std::optional<int> status)
{
    const bool isRefusal = status && *status >= 400;
    switch (reply.error()) {
    case QNetworkReply::NoError:
        return false;
    case QNetworkReply::ContentAccessDenied:
    case QNetworkReply::ContentOperationNotPermittedError:
    case QNetworkReply::ContentNotFoundError:
    case QNetworkReply::AuthenticationRequiredError:
    case QNetworkReply::ContentReSendError:
    case QNetworkReply::ContentConflictError:
    case QNetworkReply::ContentGoneError:
    case QNetworkReply::UnknownContentError:
    case QNetworkReply::ProtocolInvalidOperationError:
    case QNetworkReply::ProxyAuthenticationRequiredError:
    case QNetworkReply::InternalServerError:
    case QNetworkReply::OperationNotImplementedError:
    case QNetworkReply::ServiceUnavailableError:
    case QNetworkReply::UnknownServerError:
        return !isRefusal;
    default:
        return true;
    }
}

/// One request on its way, over all its redirects, until its last byte or its time-out. Deletes itself when
/// it has ended; a child of the transport, so that it ends with it at the latest.
class Transfer final : public QObject
{
public:
    Transfer(std::shared_ptr<QNetworkAccessManager> network, HttpRequest request, QObject *parent)
        : QObject(parent)
        , m_network(std::move(network))
        , m_request(std::move(request))
    {
        m_promise.start();
        connect(&m_unpacking, &QTimer::timeout, this, &Transfer::unpackPiece);
        m_deadline.setSingleShot(true);
        connect(&m_deadline, &QTimer::timeout, this, [this] {
            end(std::unexpected(
                TransportError { TransportError::Kind::Timeout, u"The request timed out."_s }));
        });
    }

    ~Transfer() override { end(std::unexpected(transportClosed())); }

    QFuture<Answer> start()
    {
        m_deadline.start(m_request.timeout);
        sendHop();
        return m_promise.future();
    }

private:
    void sendHop();
    void readHead();
    void readBody();
    void unpackPiece();
    [[nodiscard]] bool isCutShort(int status) const;
    void finishHop();
    void followRedirect(const QByteArray &location);
    void fail(const QString &description)
    {
        end(std::unexpected(TransportError { TransportError::Kind::Network, description }));
    }
    void dropReply();
    void end(Answer answer);

    std::shared_ptr<QNetworkAccessManager> m_network;
    HttpRequest m_request;
    QPromise<Answer> m_promise;
    QTimer m_deadline;
    QPointer<QNetworkReply> m_reply;
    QByteArray m_body;
    std::optional<qint64> m_announced; ///< bytes of this hop's answer on the wire
    qint64 m_received = 0;
    std::optional<GzipDecoder> m_gzip; ///< where the answer is packed
    QByteArray m_packed; ///< came and waits to be unpacked
    QTimer m_unpacking;
    int m_redirects = 0;
    bool m_hasEnded = false;
};

void Transfer::sendHop()
{
    const QString scheme = m_request.url.scheme();
    if (scheme != "https"_L1 && scheme != "http"_L1)
        return fail(u"The address is not an HTTP address."_s);

    QNetworkRequest request(m_request.url);
    request.setHeader(QNetworkRequest::UserAgentHeader, userAgent);
    request.setRawHeader("Accept-Encoding", "gzip"); // said by us, it leaves the unpacking to us
    for (const auto &[name, value] : std::as_const(m_request.headers)) {
        if (!isOneLine(name) || !isOneLine(value))
            return fail(u"A header of the request holds a line break."_s);
        request.setRawHeader(name, value);
    }
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    if (scheme == "https"_L1) {
        auto tls = QSslConfiguration::defaultConfiguration();
        tls.setProtocol(QSsl::TlsV1_2OrLater);
        request.setSslConfiguration(tls);
    }

    const bool isGet = m_request.method == "GET" && m_request.body.isEmpty();
    // sendCustomRequest, since post() moves the query of a POST without a body into the body
    m_reply = isGet ? m_network->get(request)
                    : m_network->sendCustomRequest(request, m_request.method, m_request.body);
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &Transfer::readHead);
    connect(m_reply, &QNetworkReply::readyRead, this, &Transfer::readBody);
    connect(m_reply, &QNetworkReply::finished, this, &Transfer::finishHop);
}

void Transfer::readHead()
{
    const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
    m_announced = length.isValid() ? std::optional(length.toLongLong()) : std::nullopt;
    if (m_announced > HttpTransport::largestAnswer)
        return end(std::unexpected(answerTooLarge()));
    const QByteArray packing = m_reply->rawHeader("Content-Encoding").toLower();
    if (packing == "gzip" || packing == "x-gzip")
        m_gzip.emplace();
    else if (!packing.isEmpty() && packing != "identity")
        return fail(u"The answer is packed in a way that was not asked for."_s);
    else
        m_body.reserve(m_announced.value_or(0));
}

void Transfer::readBody()
{
    if (m_body.size() + m_packed.size() + m_reply->bytesAvailable() > HttpTransport::largestAnswer)
        return end(std::unexpected(answerTooLarge()));
    const QByteArray received = m_reply->readAll();
    m_received += received.size();
    if (!m_gzip) {
        m_body += received;
    } else if (!received.isEmpty()) {
        m_packed += received;
        m_unpacking.start();
    }
}

void Transfer::unpackPiece()
{
    const qsizetype size = std::min(m_packed.size(), unpackedAtATime);
    const auto outcome =
        m_gzip->unpack(QByteArrayView(m_packed).first(size), m_body, HttpTransport::largestAnswer);
    if (outcome == GzipDecoder::Outcome::TooLarge)
        return end(std::unexpected(answerTooLarge()));
    if (outcome == GzipDecoder::Outcome::Broken)
        return fail(u"The answer cannot be unpacked."_s);
    m_packed.remove(0, size);
    if (!m_packed.isEmpty())
        return;
    m_unpacking.stop();
    if (m_reply->isFinished())
        finishHop();
}

/// Qt does not always notice that a connection was closed before the announced end.
bool Transfer::isCutShort(int status) const
{
    const bool hasBody = m_request.method != "HEAD" && status != 204 && status != 304;
    return hasBody && ((m_announced && m_received < *m_announced) || (m_gzip && !m_gzip->isComplete()));
}

void Transfer::finishHop()
{
    readBody();
    if (m_hasEnded || !m_packed.isEmpty())
        return;
    const QVariant statusAttribute = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    const auto status = statusAttribute.isValid() ? std::optional(statusAttribute.toInt()) : std::nullopt;
    if (isBroken(*m_reply, status))
        return fail(m_reply->errorString());
    if (isCutShort(status.value_or(0)))
        return fail(u"The answer ends too early."_s);
    if (m_request.method == "GET" && isRedirect(status.value_or(0)) && m_reply->hasRawHeader("Location"))
        return followRedirect(m_reply->rawHeader("Location"));
    end(HttpResponse { status, std::move(m_body) });
}

void Transfer::followRedirect(const QByteArray &location)
{
    const auto target = redirectTarget(m_request.url, location);
    if (!target)
        return fail(u"The server redirects to an address that is not followed."_s);
    if (++m_redirects > HttpTransport::mostRedirects)
        return fail(u"The server redirects too often."_s);
    if (!isSameOrigin(m_request.url, *target)) {
        m_request.headers.removeIf([](const auto &header) {
            return header.first.compare("Authorization", Qt::CaseInsensitive) == 0;
        });
    }
    m_request.url = *target;
    m_body.clear();
    m_received = 0;
    m_gzip.reset();
    dropReply();
    sendHop();
}

void Transfer::dropReply()
{
    if (!m_reply)
        return;
    m_reply->disconnect(this);
    m_reply->deleteLater(); // which aborts it
    m_reply.clear();
}

void Transfer::end(Answer answer)
{
    if (std::exchange(m_hasEnded, true))
        return;
    m_deadline.stop();
    m_unpacking.stop();
    dropReply();
    m_promise.addResult(std::move(answer));
    m_promise.finish();
    deleteLater();
}

} // namespace

QtHttpTransport::QtHttpTransport(Connectivity &connectivity, QObject *parent)
    : HttpTransport(parent)
    , m_connectivity(connectivity)
{
    giveUpConnections();
    connect(&m_connectivity, &Connectivity::isOnlineChanged, this, &QtHttpTransport::followConnectivity);
}

QtHttpTransport::~QtHttpTransport()
{
    endAllWaits(std::unexpected(transportClosed()));
}

bool QtHttpTransport::isOnline() const
{
    return m_connectivity.isOnline();
}

QCoro::Task<Answer> QtHttpTransport::send(HttpRequest request)
{
    const QPointer self(this);
    const auto online = co_await waitForNetwork(request.account, request.url);
    if (!online)
        co_return std::unexpected(online.error());
    if (!self)
        co_return std::unexpected(transportClosed());
    const auto network = m_network;
    auto *transfer = new Transfer(network, std::move(request), this);
    auto answer = co_await transfer->start();
    const bool hasTimedOut = !answer && answer.error().kind == TransportError::Kind::Timeout;
    if (self && hasTimedOut && m_network == network)
        giveUpConnections();
    co_return answer;
}

/// A connection whose other end cannot be reached any more says nothing, and HTTP/2 would send every further
/// request into it until the kernel gives it up, a quarter of an hour later.
void QtHttpTransport::giveUpConnections()
{
    auto *const network = new QNetworkAccessManager(this);
    network->setCookieJar(new NoCookies(network));
    // one that has been replaced ends with its last transfer, all of them with the transport
    m_network = { network, [owned = QPointer(network)](QNetworkAccessManager *) {
                     if (owned)
                         owned->deleteLater();
                 } };
}

void QtHttpTransport::followConnectivity()
{
    if (!m_connectivity.isOnline())
        return;
    giveUpConnections();
    if (!m_waiting.empty())
        qCInfo(lcCalendar) << "The network is back";
    endAllWaits({});
}

QCoro::Task<std::expected<void, TransportError>> QtHttpTransport::waitForNetwork(QString account,
                                                                                 QUrl address)
{
    if (isLoopback(address) || m_connectivity.isOnline())
        co_return WaitOutcome();

    if (m_waiting.empty())
        qCInfo(lcCalendar) << "There is no network; requests wait for one";
    const WaitKey key { account, address.host(), address.path() };
    if (auto older = m_waiting.extract(key)) {
        older.mapped().addResult(std::unexpected(
            TransportError { TransportError::Kind::Superseded, u"A newer request took its place."_s }));
        older.mapped().finish();
    }
    auto &wait = m_waiting[key];
    wait.start();
    co_return co_await wait.future();
}

void QtHttpTransport::endAllWaits(const WaitOutcome &outcome)
{
    for (auto &[key, wait] : std::exchange(m_waiting, {})) {
        wait.addResult(outcome);
        wait.finish();
    }
}

} // namespace kestrel
