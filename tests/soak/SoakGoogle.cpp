#include "soak/SoakGoogle.h"
#include "base/Instant.h"
#include <coroutine>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr int requestsPerFailure = 97;

/// Goes on in a later turn of the event loop.
struct NextTurn
{
    QObject *context;

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> waiting) const
    {
        QMetaObject::invokeMethod(context, [waiting] { waiting.resume(); }, Qt::QueuedConnection);
    }
    void await_resume() const noexcept { }
};

QByteArray attendees(qint64 number)
{
    QByteArray list;
    for (qint64 i = 0; i < number; ++i) {
        const QByteArray name = "guest" + QByteArray::number(i);
        list += (i > 0 ? ",{\"email\":\"" : "{\"email\":\"") + name + "@example.com\",\"displayName\":\""
            + name + R"(","responseStatus":"accepted"})";
    }
    return list;
}

/// The meeting of this number as Google writes it at `now`.
QByteArray eventJson(qint64 number, Instant start, Instant now)
{
    const QByteArray digits = QByteArray::number(number);
    // by half hour, so that something is always another than it was
    const qint64 version = (now.time_since_epoch() / 30min + number) % 7;
    if (number % 11 == 0 && version > 3)
        start += 3min;
    QByteArray json = R"({"id":"event)" + digits + R"(","status":")"
        + (number % 29 == 0 && version == 6 ? "cancelled" : "confirmed") + R"(","summary":"Meeting )" + digits
        + ", version " + QByteArray::number(version) + R"(","start":{"dateTime":")"
        + toInternetDateTime(start).toUtf8() + R"("},"end":{"dateTime":")"
        + toInternetDateTime(start + 15min + 5min * (number % 6)).toUtf8()
        + R"("},"htmlLink":"https://calendar.google.com/calendar/event?eid=)" + digits + R"(","attendees":[)"
        + attendees(number % 8) + "]";
    if (number % 3 == 0)
        json += R"(,"hangoutLink":"https://meet.google.com/abc-defg-hij")";
    else if (number % 3 == 1)
        json += R"(,"description":"Agenda &amp; notes\nhttps://zoom.us/j/)" + digits
            + R"(?pwd=1","location":"Harbour office, second floor")";
    return json + "}";
}

} // namespace

SoakGoogle::SoakGoogle(const Clock &clock, int meetingsPerDay)
    : m_clock(clock)
    , m_between(std::chrono::milliseconds(24h) / meetingsPerDay)
{
}

QCoro::Task<std::expected<HttpResponse, TransportError>> SoakGoogle::send(HttpRequest request)
{
    co_await NextTurn { this };
    ++requests;
    const bool isEvents = request.url.path().endsWith("/events"_L1);
    if (isEvents && requests % requestsPerFailure == 0) {
        switch (requests / requestsPerFailure % 4) {
        case 0:
            co_return HttpResponse { 503, "try later" };
        case 1:
            co_return HttpResponse { 200, R"({"items":[{"id":)" };
        case 2:
            co_return HttpResponse { 401, "{}" };
        default:
            co_return std::unexpected(TransportError { TransportError::Kind::Timeout, u"no answer"_s });
        }
    }
    co_return answerTo(request);
}

QCoro::Task<std::expected<void, TransportError>> SoakGoogle::waitForNetwork(QString /*account*/,
                                                                            QUrl /*address*/)
{
    co_return std::expected<void, TransportError>();
}

HttpResponse SoakGoogle::answerTo(const HttpRequest &request)
{
    const QString path = request.url.path();
    if (path.endsWith("/token"_L1))
        return { 200, R"({"access_token":"at","refresh_token":"rt","expires_in":3599})" };
    if (path.endsWith("/userinfo"_L1))
        return { 200, R"({"email":"casey)" + QByteArray::number(requests) + R"(@example.com"})" };
    if (path.endsWith("/calendarList"_L1))
        return { 200,
                 R"({"items":[{"id":"own","summary":"Own","primary":true,"backgroundColor":"#7986CB"},)"
                 R"({"id":"team","summary":"Team","backgroundColor":"#33B679"}]})" };
    if (path.endsWith("/events"_L1))
        return { 200, events(request.account) };
    return { 200, "{}" };
}

QByteArray SoakGoogle::events(const QString &account)
{
    const auto share = m_accounts.indexOf(account);
    if (share < 0)
        return R"({"items":[]})";
    const Instant now = m_clock.now();
    const qint64 first = (now.time_since_epoch() - 1h) / m_between;
    const qint64 last = (now.time_since_epoch() + 24h) / m_between;
    QByteArray json;
    json.reserve(256LL * 1024);
    json += R"({"items":[)";
    bool isFirst = true;
    for (qint64 number = first; number <= last; ++number) {
        if (number % m_accounts.size() != share)
            continue;
        if (!std::exchange(isFirst, false))
            json += ',';
        json += eventJson(number, Instant(number * m_between), now);
    }
    return json + "]}";
}

} // namespace kestrel
