#include "demo/SampleGoogle.h"
#include "demo/CalendarApi.h"
#include "demo/ConsentPage.h"
#include "demo/SampleTable.h"
#include <QDebug>
#include <QJsonDocument>
#include <QRegularExpression>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kestrel::demo {

namespace {

constexpr std::size_t mostPendingConsents = 100;
constexpr std::size_t mostLoggedRequests = 10'000;

const QString calendarScope = u"https://www.googleapis.com/auth/calendar.readonly"_s;
const QString eventsScope = u"https://www.googleapis.com/auth/calendar.events.readonly"_s;

std::vector<SampleAccount> accountsFor(const SampleGoogle::Options &options)
{
    if (options.load)
        return generateLoad(*options.load, options.anchor);
    auto accounts = readSampleTable(builtInSampleTable(), options.anchor);
    if (!accounts)
        qFatal("sample-events.json: %s", qUtf8Printable(accounts.error().description));
    return std::move(*accounts);
}

Answer refusal(const QString &reason)
{
    return Answer::html(refusalPage(reason), 400);
}

Answer notFound()
{
    return Answer::apiError(404, u"Not Found"_s, u"notFound"_s);
}

Answer badRequest(const QString &message)
{
    return Answer::apiError(400, message, u"badRequest"_s);
}

Answer unauthenticated()
{
    return Answer::apiError(401, u"Request had invalid authentication credentials."_s, u"authError"_s);
}

std::expected<QJsonObject, QString> jsonBody(const ReceivedRequest &request)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(request.body, &error);
    if (!document.isObject())
        return std::unexpected(document.isNull() ? error.errorString() : u"The body must be a JSON object"_s);
    return document.object();
}

/// What is wrong with an authorization request; empty when all is well.
QString faultOf(const QUrlQuery &query)
{
    if (valueOf(query, u"client_id"_s).isEmpty())
        return u"The request names no client_id."_s;
    // as Google holds installed applications to it, and to Kestrel's own path
    static const QRegularExpression loopback(uR"(\Ahttp://127\.0\.0\.1:(\d{1,5})/callback\z)"_s);
    const auto match = loopback.match(valueOf(query, u"redirect_uri"_s));
    if (!match.hasMatch() || match.capturedView(1).toInt() < 1 || match.capturedView(1).toInt() > 65535)
        return u"The redirect_uri must be http://127.0.0.1:PORT/callback."_s;
    if (valueOf(query, u"response_type"_s) != u"code")
        return u"The response_type must be code."_s;
    if (valueOf(query, u"scope"_s).trimmed().isEmpty())
        return u"The request names no scope."_s;
    if (valueOf(query, u"code_challenge_method"_s) != u"S256")
        return u"The code_challenge_method must be S256."_s;
    static const QRegularExpression challenge(uR"(\A[A-Za-z0-9_-]{43}\z)"_s);
    if (!challenge.match(valueOf(query, u"code_challenge"_s)).hasMatch())
        return u"The code_challenge must be 43 characters of base64url."_s;
    if (valueOf(query, u"state"_s).isEmpty())
        return u"The request has no state."_s;
    return {};
}

} // namespace

Instant SampleGoogle::anchorFor(Instant now)
{
    return std::chrono::floor<std::chrono::minutes>(now);
}

SampleGoogle::SampleGoogle(const Options &options, const Clock &clock, QObject *parent)
    : QObject(parent)
    , m_clock(clock)
    , m_accounts(accountsFor(options))
    , m_grants(clock, options.accessTokenLifetime)
    , m_server([this](const ReceivedRequest &request) { return answer(request); })
{
    if (!options.acceptsSampleTokens)
        return;
    for (std::size_t i = 0; i < m_accounts.size(); ++i) {
        m_grants.addStandingGrant(u"sample-refresh-%1"_s.arg(i),
                                  { .account = m_accounts[i].email,
                                    .clientId = {},
                                    .redirectUri = {},
                                    .codeChallenge = {},
                                    .scopes = { eventsScope, calendarScope, u"openid"_s, u"email"_s } });
    }
}

QUrl SampleGoogle::base() const
{
    return QUrl(u"http://127.0.0.1:%1"_s.arg(m_server.port()));
}

Answer SampleGoogle::answer(const ReceivedRequest &request)
{
    const QString path = request.path();
    if (auto controlled = control(request, path))
        return std::move(*controlled);

    LoggedRequest logged { .method = QString::fromLatin1(request.method),
                           .path = path,
                           .queryNames = {},
                           .hasAuthorization = request.header("authorization").has_value(),
                           .hasCookie = request.header("cookie").has_value(),
                           .connection = request.connection,
                           .status = 0 };
    for (const auto &[name, value] : request.query().queryItems())
        logged.queryNames.append(name);

    const auto fault = m_faults.take(path);
    std::optional<Answer> answer = fault ? fault->replacement(path) : std::nullopt;
    if (!answer) {
        answer = play(request, path);
        if (fault)
            answer = fault->spoiled(std::move(*answer));
    }

    logged.status = answer->delivery == Answer::Delivery::Nothing ? 0 : answer->status;
    m_log.push_back(std::move(logged));
    if (m_log.size() > mostLoggedRequests)
        m_log.pop_front();
    ++m_requestCount;
    return std::move(*answer);
}

Answer SampleGoogle::play(const ReceivedRequest &request, const QString &path)
{
    struct Route
    {
        const char *method;
        const char *path;
        Answer (*play)(SampleGoogle &google, const ReceivedRequest &request);
    };
    static constexpr Route routes[] = {
        { "GET", "/o/oauth2/v2/auth",
          [](auto &google, auto &asked) { return google.authorize(asked.query()); } },
        { "POST", "/consent", [](auto &google, auto &asked) { return google.consent(asked.form()); } },
        { "POST", "/token", [](auto &google, auto &asked) { return google.token(asked.form()); } },
        { "POST", "/revoke", [](auto &google, auto &asked) { return google.revoke(asked); } },
        { "GET", "/v1/userinfo", [](auto &google, auto &asked) { return google.userInfo(asked); } },
        { "GET", "/calendar/v3/", [](auto &google, auto &asked) { return google.calendarApi(asked); } },
    };
    for (const Route &route : routes) {
        const QLatin1StringView routePath(route.path);
        if (path != routePath && !(routePath.endsWith(u'/') && path.startsWith(routePath)))
            continue;
        if (request.method != route.method)
            return Answer::apiError(405, u"Method Not Allowed"_s, u"httpMethodNotAllowed"_s);
        return route.play(*this, request);
    }
    return notFound();
}

Answer SampleGoogle::authorize(const QUrlQuery &query)
{
    if (const QString fault = faultOf(query); !fault.isEmpty())
        return refusal(fault);
    PendingConsent pending {
        .id = randomText(),
        .authorization = { .account = {},
                           .clientId = valueOf(query, u"client_id"_s),
                           .redirectUri = valueOf(query, u"redirect_uri"_s),
                           .codeChallenge = valueOf(query, u"code_challenge"_s),
                           .scopes = valueOf(query, u"scope"_s).split(u' ', Qt::SkipEmptyParts),
                           .isOffline = valueOf(query, u"access_type"_s) == u"offline" },
        .state = valueOf(query, u"state"_s)
    };
    const QByteArray page = consentPage(pending.id, pending.authorization.scopes, m_accounts);
    m_pendingConsents.push_back(std::move(pending));
    if (m_pendingConsents.size() > mostPendingConsents)
        m_pendingConsents.pop_front();
    return Answer::html(page);
}

Answer SampleGoogle::consent(const QUrlQuery &form)
{
    const auto found = std::ranges::find(m_pendingConsents, valueOf(form, u"request"_s), &PendingConsent::id);
    if (found == m_pendingConsents.end())
        return refusal(u"This page was answered already, or is too old."_s);
    const QString decision = valueOf(form, u"decision"_s);
    const SampleAccount *chosen = account(valueOf(form, u"account"_s));
    if (decision != u"cancel" && (decision != u"allow" || !chosen))
        return refusal(u"The page came back without a choice."_s);

    PendingConsent pending = std::move(*found);
    m_pendingConsents.erase(found);
    QList<std::pair<QString, QString>> items { { u"state"_s, pending.state } };
    const QByteArray target = pending.authorization.redirectUri.toLatin1();
    if (decision == u"cancel") {
        items.emplaceBack(u"error"_s, u"access_denied"_s);
    } else {
        const QString scopes = pending.authorization.scopes.join(u' ');
        pending.authorization.account = chosen->email;
        items.emplaceBack(u"code"_s, m_grants.issueCode(std::move(pending.authorization)));
        items.emplaceBack(u"scope"_s, scopes);
    }
    QByteArray query;
    for (const auto &[name, value] : items)
        query += (query.isEmpty() ? '?' : '&') + name.toUtf8() + '=' + QUrl::toPercentEncoding(value);
    return Answer::redirect(target + query);
}

Answer SampleGoogle::token(const QUrlQuery &form)
{
    const QString clientId = valueOf(form, u"client_id"_s);
    if (clientId.isEmpty())
        return Answer::oauthError(400, u"invalid_request"_s,
                                  u"Could not determine client ID from request."_s);
    if (valueOf(form, u"client_secret"_s).isEmpty())
        return Answer::oauthError(400, u"invalid_request"_s, u"client_secret is missing."_s);

    const QString grantType = valueOf(form, u"grant_type"_s);
    std::expected<IssuedTokens, GrantRefusal> tokens;
    if (grantType == u"authorization_code") {
        tokens = m_grants.exchange(valueOf(form, u"code"_s), clientId, valueOf(form, u"redirect_uri"_s),
                                   valueOf(form, u"code_verifier"_s));
    } else if (grantType == u"refresh_token") {
        tokens = m_grants.refresh(valueOf(form, u"refresh_token"_s), clientId);
    } else {
        return Answer::oauthError(400, u"unsupported_grant_type"_s,
                                  u"Invalid grant_type: %1"_s.arg(grantType));
    }
    if (!tokens)
        return Answer::oauthError(tokens.error().status, tokens.error().error, tokens.error().description);

    QJsonObject object { { u"access_token"_s, tokens->accessToken },
                         { u"expires_in"_s, static_cast<qint64>(tokens->lifetime.count()) },
                         { u"scope"_s, tokens->scopes.join(u' ') },
                         { u"token_type"_s, u"Bearer"_s } };
    if (!tokens->refreshToken.isEmpty())
        object.insert(u"refresh_token"_s, tokens->refreshToken);
    return Answer::json(object);
}

Answer SampleGoogle::revoke(const ReceivedRequest &request)
{
    const QUrlQuery query = request.query();
    const QString token = valueOf(query.hasQueryItem(u"token"_s) ? query : request.form(), u"token"_s);
    if (!m_grants.revoke(token))
        return Answer::oauthError(400, u"invalid_token"_s, u"Token expired or revoked"_s);
    return Answer::json({});
}

Answer SampleGoogle::userInfo(const ReceivedRequest &request)
{
    const auto holder = bearer(request);
    const SampleAccount *known = holder ? account(holder->account) : nullptr;
    if (!known)
        return Answer::oauthError(401, u"invalid_request"_s, u"Invalid Credentials"_s);
    QJsonObject person { { u"sub"_s, QString::number(100000 + (known - m_accounts.data())) } };
    if (holder->scopes.contains(u"email")) {
        person.insert(u"email"_s, known->email);
        person.insert(u"email_verified"_s, true);
    }
    if (holder->scopes.contains(u"profile"))
        person.insert(u"name"_s, known->name);
    return Answer::json(person);
}

Answer SampleGoogle::calendarApi(const ReceivedRequest &request)
{
    const auto holder = bearer(request);
    SampleAccount *known = holder ? account(holder->account) : nullptr;
    if (!known)
        return unauthenticated();
    const auto forbidden = [] {
        return Answer::apiError(403, u"Request had insufficient authentication scopes."_s,
                                u"insufficientPermissions"_s);
    };

    // split before decoding, since an identifier may hold a slash
    const QStringList parts = request.target.path(QUrl::FullyEncoded).split(u'/').mid(3);
    if (parts == QStringList { u"users"_s, u"me"_s, u"calendarList"_s }) {
        if (!holder->scopes.contains(calendarScope))
            return forbidden();
        return calendarList(*known, request.query());
    }
    if (parts.size() != 3 || parts[0] != u"calendars" || parts[2] != u"events")
        return notFound();
    if (!holder->scopes.contains(calendarScope) && !holder->scopes.contains(eventsScope))
        return forbidden();
    const SampleCalendar *calendar = known->calendar(QUrl::fromPercentEncoding(parts[1].toLatin1()));
    if (!calendar)
        return notFound();
    return eventsList(*calendar, request.query(), m_clock.now(), m_revision);
}

std::optional<Answer> SampleGoogle::control(const ReceivedRequest &request, const QString &path)
{
    if (path == u"/faults")
        return changeFaults(request);
    if (path == u"/requests" && request.method == "GET")
        return requestLog();
    if (path == u"/requests" && request.method == "DELETE") {
        m_log.clear();
        m_requestCount = 0;
        return Answer::json({});
    }
    if (request.method != "POST")
        return {};
    if (path == u"/calendar-events")
        return changeEvents(request);
    if (path == u"/expire-tokens") {
        m_grants.expireAccessTokens();
        return Answer::json({});
    }
    if (path == u"/revoke-all") {
        m_grants.revokeAll();
        return Answer::json({});
    }
    return {};
}

Answer SampleGoogle::changeFaults(const ReceivedRequest &request)
{
    if (request.method == "POST") {
        const auto body = jsonBody(request);
        auto fault = body ? Fault::fromJson(*body) : std::unexpected(body.error());
        if (!fault)
            return badRequest(fault.error());
        m_faults.add(std::move(*fault));
    } else if (request.method == "DELETE") {
        m_faults.clear();
    }
    return Answer::json({ { u"faults"_s, m_faults.toJson() } });
}

/// {"account": …, "calendar": …, "event": a row} puts an event in, around the present; {…, "remove": id}
/// takes one out.
Answer SampleGoogle::changeEvents(const ReceivedRequest &request)
{
    const auto body = jsonBody(request);
    if (!body)
        return badRequest(body.error());
    SampleAccount *holder = account(body->value(u"account").toString());
    SampleCalendar *calendar = holder ? holder->calendar(body->value(u"calendar").toString()) : nullptr;
    if (!calendar)
        return notFound();
    if (body->contains(u"remove")) {
        if (!calendar->remove(body->value(u"remove").toString()))
            return notFound();
        ++m_revision;
        return Answer::json({});
    }
    auto event = readEventRow(body->value(u"event").toObject(), *holder, *calendar, m_clock.now());
    if (!event)
        return badRequest(event.error().description);
    Answer answer = Answer::jsonText(event->json);
    calendar->put(std::move(*event));
    ++m_revision;
    return answer;
}

Answer SampleGoogle::requestLog() const
{
    QJsonArray requests;
    for (const LoggedRequest &request : m_log) {
        requests.append(QJsonObject { { u"method"_s, request.method },
                                      { u"path"_s, request.path },
                                      { u"query"_s, QJsonArray::fromStringList(request.queryNames) },
                                      { u"authorization"_s, request.hasAuthorization },
                                      { u"cookie"_s, request.hasCookie },
                                      { u"connection"_s, request.connection },
                                      { u"status"_s, request.status } });
    }
    return Answer::json({ { u"count"_s, m_requestCount }, { u"requests"_s, requests } });
}

std::optional<Authorization> SampleGoogle::bearer(const ReceivedRequest &request) const
{
    const QByteArray value = request.header("authorization").value_or(QByteArray());
    if (!value.startsWith("Bearer "))
        return {};
    return m_grants.holderOf(QString::fromLatin1(value.mid(7)));
}

SampleAccount *SampleGoogle::account(const QString &email)
{
    const auto found = std::ranges::find(m_accounts, email, &SampleAccount::email);
    return found == m_accounts.end() ? nullptr : &*found;
}

} // namespace kestrel::demo
