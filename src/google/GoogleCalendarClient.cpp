#include "google/GoogleCalendarClient.h"
#include "auth/GoogleOAuth.h"
#include "google/CalendarDecoder.h"
#include "google/PageTurns.h"
#include "platform/HttpTransport.h"
#include <QByteArrayList>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

template<typename T>
using Decode = std::expected<T, DecodingError> (*)(QByteArrayView);

CalendarFailure failureOf(const TransportError &error)
{
    if (error.kind == TransportError::Kind::AnswerTooLarge)
        return CalendarError { CalendarError::Kind::Decoding, 0, u"answer too large"_s };
    return AuthError(error);
}

/// `pathAndQuery` is encoded already; it is put behind the base byte by byte, since QUrl's setters would
/// decode it.
QUrl addressAt(const QUrl &apiBase, const QByteArray &pathAndQuery)
{
    QByteArray base = apiBase.toEncoded(QUrl::RemoveQuery | QUrl::RemoveFragment);
    while (base.endsWith('/'))
        base.chop(1);
    return QUrl::fromEncoded(base + pathAndQuery, QUrl::StrictMode);
}

/// What RFC 3986 allows in a path stays as it is, the slash included.
QByteArray encodedForPath(const QString &calendarID)
{
    return QUrl::toPercentEncoding(calendarID, "!$&'()*+,;=:@/");
}

QByteArray queryItem(const QByteArray &name, const QString &value)
{
    return name + '=' + QUrl::toPercentEncoding(value, ":");
}

/// A static function and no member: what it works with is kept alive by the caller, whatever becomes of the
/// client.
template<typename T>
QCoro::Task<std::expected<T, CalendarFailure>> get(GoogleOAuth &oauth, HttpTransport &transport,
                                                   std::shared_ptr<PageTurns> turns, QUrl url,
                                                   Decode<T> decode)
{
    for (bool isRetry = false;; isRetry = true) {
        const auto online = co_await transport.waitForNetwork(oauth.accountID(), url);
        if (!online)
            co_return std::unexpected(failureOf(online.error()));
        const auto token = co_await oauth.accessToken();
        if (!token)
            co_return std::unexpected(CalendarFailure(token.error()));

        HttpRequest request;
        request.url = url;
        request.headers = { { "Authorization", "Bearer " + token->toUtf8() },
                            { "Accept", "application/json" } };
        request.account = oauth.accountID();
        const auto response = co_await transport.send(std::move(request));
        if (!response)
            co_return std::unexpected(failureOf(response.error()));

        if (response->status == 401 && !isRetry) {
            const auto refreshed = co_await oauth.refreshAccessToken();
            if (!refreshed)
                co_return std::unexpected(CalendarFailure(refreshed.error()));
            continue;
        }
        if (!response->isSuccess()) {
            co_return std::unexpected(CalendarError { CalendarError::Kind::HttpStatus,
                                                      response->statusOrMinusOne(), response->bodyText() });
        }

        co_await turns->next();
        auto decoded = decode(response->body);
        if (!decoded)
            co_return std::unexpected(
                CalendarError { CalendarError::Kind::Decoding, 0, decoded.error().description });
        co_return std::move(*decoded);
    }
}

} // namespace

QString CalendarError::description() const
{
    switch (kind) {
    case Kind::HttpStatus:
        return u"HTTP %1: "_s.arg(status) + text;
    case Kind::Decoding:
        return u"Decoding failed: "_s + text;
    case Kind::NoEvents:
        return u"No events available"_s;
    case Kind::FullSyncRequired:
        return u"Full sync required (410)"_s;
    }
    Q_UNREACHABLE();
}

QString description(const CalendarFailure &failure)
{
    if (const auto *own = std::get_if<CalendarError>(&failure))
        return own->description();
    return description(std::get<AuthError>(failure));
}

QString causeOf(const CalendarFailure &failure)
{
    const auto *own = std::get_if<CalendarError>(&failure);
    if (!own)
        return causeOf(std::get<AuthError>(failure));
    switch (own->kind) {
    case CalendarError::Kind::HttpStatus:
        return u"HTTP %1"_s.arg(own->status);
    case CalendarError::Kind::Decoding:
        return u"an answer that cannot be understood"_s;
    case CalendarError::Kind::NoEvents:
    case CalendarError::Kind::FullSyncRequired:
        return own->description();
    }
    Q_UNREACHABLE();
}

bool isSuperseded(const CalendarFailure &failure)
{
    const auto *auth = std::get_if<AuthError>(&failure);
    const auto *transport = auth ? std::get_if<TransportError>(auth) : nullptr;
    return transport && transport->kind == TransportError::Kind::Superseded;
}

GoogleCalendarClient::GoogleCalendarClient(GoogleOAuth &oauth, HttpTransport &transport, QUrl apiBase,
                                           std::shared_ptr<PageTurns> turns)
    : m_oauth(oauth)
    , m_transport(transport)
    , m_apiBase(std::move(apiBase))
    , m_turns(std::move(turns))
{
}

QCoro::Task<std::expected<Google::CalendarListResponse, CalendarFailure>> GoogleCalendarClient::calendarList()
{
    return get(m_oauth, m_transport, m_turns,
               addressAt(m_apiBase, "/calendar/v3/users/me/calendarList?minAccessRole=reader"),
               &decodeCalendarList);
}

QCoro::Task<std::expected<Google::EventsListResponse, CalendarFailure>>
GoogleCalendarClient::events(QString calendarID, std::optional<Instant> timeMin,
                             std::optional<Instant> timeMax, std::optional<QString> syncToken)
{
    QByteArrayList query { "singleEvents=true", "maxResults=250" };
    if (syncToken) {
        query << queryItem("syncToken", *syncToken);
    } else {
        query << "orderBy=startTime";
        if (timeMin)
            query << queryItem("timeMin", toInternetDateTime(*timeMin));
        if (timeMax)
            query << queryItem("timeMax", toInternetDateTime(*timeMax));
    }
    auto result = co_await get(
        m_oauth, m_transport, m_turns,
        addressAt(m_apiBase,
                  "/calendar/v3/calendars/" + encodedForPath(calendarID) + "/events?" + query.join('&')),
        &decodeEventsList);
    if (!result) {
        const auto *answer = std::get_if<CalendarError>(&result.error());
        if (answer && answer->kind == CalendarError::Kind::HttpStatus && answer->status == 410)
            co_return std::unexpected(CalendarError { CalendarError::Kind::FullSyncRequired, 0, {} });
    }
    co_return result;
}

} // namespace kestrel
