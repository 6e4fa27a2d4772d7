#include "demo/SampleGoogle.h"
#include "demo/ScriptedConsent.h"
#include <QCoro/QCoroTask>
#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkCookieJar>
#include <QNetworkReply>
#include <QTest>
#include <memory>

using namespace Qt::StringLiterals;
using namespace kestrel;
using namespace kestrel::demo;
using namespace std::chrono_literals;

namespace {

const QString eventsPath = u"/calendar/v3/calendars/primary/events"_s;
const QString window = u"?singleEvents=true&orderBy=startTime&maxResults=250"
                       "&timeMin=2030-01-15T08:00:00Z&timeMax=2030-01-16T09:00:00Z"_s;

struct Reply
{
    int status = 0;
    QByteArray body;
    QByteArray contentType;
    QByteArray cookie;
    QByteArray location;
    bool isBroken = false; ///< no whole answer came

    [[nodiscard]] QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
    /// Of the OAuth endpoints and of the Calendar API alike.
    [[nodiscard]] QString error() const
    {
        const QJsonValue error = json().value(u"error");
        return error.isObject() ? error[u"errors"][0][u"reason"].toString() : error.toString();
    }
};

using Fields = QMap<QString, QString>;

QByteArray encoded(const Fields &fields)
{
    QByteArray text;
    for (const auto &[name, value] : fields.asKeyValueRange())
        text += (text.isEmpty() ? "" : "&") + name.toUtf8() + '=' + QUrl::toPercentEncoding(value);
    return text;
}

QStringList idsOf(const Reply &reply)
{
    QStringList ids;
    for (const QJsonValue item : reply.json().value(u"items").toArray())
        ids.append(item[u"id"].toString());
    return ids;
}

Instant at(QStringView text)
{
    return parseInternetDateTime(text).value();
}

} // namespace

/// Drives the server as Kestrel does, over HTTP, at nine o'clock of a January morning.
class TestSampleGoogle final : public QObject
{
    Q_OBJECT

    FixedClock m_clock { at(u"2030-01-15T09:00:00Z") };
    std::unique_ptr<SampleGoogle> m_google;
    QNetworkAccessManager m_network;
    QByteArray m_accessToken;
    /// Stands for Kestrel's end of the redirect.
    HttpServer m_callback { [this](const ReceivedRequest &request) {
        m_redirect = request.query();
        return Answer::html("<p>Done</p>");
    } };
    QUrlQuery m_redirect;

    Reply send(const QByteArray &method, const QString &target, const QByteArray &body = {})
    {
        QNetworkRequest request(QUrl(m_google->base().toString() + target));
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
        request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/x-www-form-urlencoded"_s);
        if (!m_accessToken.isEmpty())
            request.setRawHeader("Authorization", "Bearer " + m_accessToken);
        const std::unique_ptr<QNetworkReply> reply(m_network.sendCustomRequest(request, method, body));
        QEventLoop loop;
        connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        return { .status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
                 .body = reply->readAll(),
                 .contentType = reply->rawHeader("Content-Type"),
                 .cookie = reply->rawHeader("Set-Cookie"),
                 .location = reply->rawHeader("Location"),
                 .isBroken = reply->error() == QNetworkReply::RemoteHostClosedError };
    }

    Reply get(const QString &target) { return send("GET", target); }
    Reply post(const QString &target, const QByteArray &body = {}) { return send("POST", target, body); }

    static QString verifier() { return u"a-verifier-of-forty-three-characters-or-more"_s; }
    [[nodiscard]] QString redirectUri() const
    {
        return u"http://127.0.0.1:%1/callback"_s.arg(m_callback.port());
    }

    [[nodiscard]] Fields authorizationFields() const
    {
        const QByteArray challenge =
            QCryptographicHash::hash(verifier().toLatin1(), QCryptographicHash::Sha256)
                .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
        return { { u"client_id"_s, u"sample-client"_s },
                 { u"redirect_uri"_s, redirectUri() },
                 { u"response_type"_s, u"code"_s },
                 { u"scope"_s, u"https://www.googleapis.com/auth/calendar.readonly openid email"_s },
                 { u"code_challenge"_s, QString::fromLatin1(challenge) },
                 { u"code_challenge_method"_s, u"S256"_s },
                 { u"state"_s, u"a+b &c"_s },
                 { u"access_type"_s, u"offline"_s } };
    }

    std::expected<void, QString> consent(const Fields &fields, const QString &account = {},
                                         bool isCancelled = false)
    {
        m_redirect.clear();
        QUrl page = m_google->base();
        page.setPath(u"/o/oauth2/v2/auth"_s);
        page.setQuery(QString::fromLatin1(encoded(fields)));
        return QCoro::waitFor(press({ .page = page, .account = account, .isCancelled = isCancelled }));
    }

    /// The form that turns the redirect's code into tokens.
    [[nodiscard]] Fields exchangeFields() const
    {
        return { { u"grant_type"_s, u"authorization_code"_s }, { u"code"_s, valueOf(m_redirect, u"code"_s) },
                 { u"code_verifier"_s, verifier() },           { u"client_id"_s, u"sample-client"_s },
                 { u"client_secret"_s, u"sample-secret"_s },   { u"redirect_uri"_s, redirectUri() } };
    }

    Reply refresh(const QString &refreshToken)
    {
        return post(u"/token"_s,
                    encoded({ { u"grant_type"_s, u"refresh_token"_s },
                              { u"refresh_token"_s, refreshToken },
                              { u"client_id"_s, u"sample-client"_s },
                              { u"client_secret"_s, u"sample-secret"_s } }));
    }

    /// Starts a server of these options and signs in as its first account.
    void start(SampleGoogle::Options options)
    {
        m_network.clearConnectionCache();
        m_network.setCookieJar(new QNetworkCookieJar(&m_network));
        m_accessToken.clear();
        options.anchor = SampleGoogle::anchorFor(m_clock.now());
        options.acceptsSampleTokens = true;
        m_google = std::make_unique<SampleGoogle>(options, m_clock);
        QVERIFY(m_google->listen());
        m_accessToken = refresh(u"sample-refresh-0"_s).json().value(u"access_token").toString().toLatin1();
        QVERIFY(!m_accessToken.isEmpty());
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_callback.listen(0)); }

    void init()
    {
        m_clock.setNow(at(u"2030-01-15T09:00:00Z"));
        start({});
    }

    void consentLeadsToTokensOfTheChosenAccount()
    {
        m_accessToken.clear();
        const auto pressed = consent(authorizationFields(), u"casey.sample@example.org"_s);
        QVERIFY2(pressed, pressed ? "" : qPrintable(pressed.error()));
        QCOMPARE(valueOf(m_redirect, u"state"_s), u"a+b &c"_s);

        const Reply tokens = post(u"/token"_s, encoded(exchangeFields()));
        QCOMPARE(tokens.status, 200);
        QCOMPARE(tokens.json().value(u"expires_in").toInt(), 3599);
        m_accessToken = tokens.json().value(u"access_token").toString().toLatin1();
        QCOMPARE(get(u"/v1/userinfo"_s).json().value(u"email").toString(), u"casey.sample@example.org"_s);
        QCOMPARE(idsOf(get(u"/calendar/v3/users/me/calendarList?minAccessRole=reader"_s)).size(), 2);
        QCOMPARE(get(eventsPath + window).status, 200);

        QCOMPARE(refresh(tokens.json().value(u"refresh_token").toString()).status, 200);
    }

    void onlineAccessGetsNoRefreshToken()
    {
        Fields fields = authorizationFields();
        fields.remove(u"access_type"_s);
        QVERIFY(consent(fields));
        const Reply tokens = post(u"/token"_s, encoded(exchangeFields()));
        QCOMPARE(tokens.status, 200);
        QVERIFY(!tokens.json().contains(u"refresh_token"));
    }

    void cancelLeadsBackWithoutACode()
    {
        QVERIFY(consent(authorizationFields(), {}, true));
        QCOMPARE(valueOf(m_redirect, u"error"_s), u"access_denied"_s);
        QCOMPARE(valueOf(m_redirect, u"state"_s), u"a+b &c"_s);
        QVERIFY(!m_redirect.hasQueryItem(u"code"_s));
    }

    void anAnsweredConsentCannotBeAnsweredAgain()
    {
        const Reply page = get(u"/o/oauth2/v2/auth?"_s + QString::fromLatin1(encoded(authorizationFields())));
        const QByteArray before = "name=\"request\" value=\"";
        const qsizetype start = page.body.indexOf(before) + before.size();
        const QByteArray id = page.body.mid(start, page.body.indexOf('"', start) - start);
        QCOMPARE(post(u"/consent"_s, "decision=cancel&request=" + id).status, 302);
        QCOMPARE(post(u"/consent"_s, "decision=cancel&request=" + id).status, 400);
    }

    void authorizationRequestsAreChecked_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("value");
        QTest::newRow("no client") << u"client_id"_s << QString();
        QTest::newRow("another host") << u"redirect_uri"_s << u"http://example.com:80/callback"_s;
        QTest::newRow("a host that begins like loopback")
            << u"redirect_uri"_s << u"http://127.0.0.1.example.com:8/callback"_s;
        QTest::newRow("a user before another host")
            << u"redirect_uri"_s << u"http://127.0.0.1:8@example.com/callback"_s;
        QTest::newRow("https") << u"redirect_uri"_s << u"https://127.0.0.1:8/callback"_s;
        QTest::newRow("no port") << u"redirect_uri"_s << u"http://127.0.0.1/callback"_s;
        QTest::newRow("a port that is none") << u"redirect_uri"_s << u"http://127.0.0.1:65536/callback"_s;
        QTest::newRow("a longer path") << u"redirect_uri"_s << u"http://127.0.0.1:8/callback/more"_s;
        QTest::newRow("a line break at the end") << u"redirect_uri"_s << u"http://127.0.0.1:8/callback\n"_s;
        QTest::newRow("implicit flow") << u"response_type"_s << u"token"_s;
        QTest::newRow("no scope") << u"scope"_s << u" "_s;
        QTest::newRow("plain challenge") << u"code_challenge_method"_s << u"plain"_s;
        QTest::newRow("short challenge") << u"code_challenge"_s << u"short"_s;
        QTest::newRow("no state") << u"state"_s << QString();
    }

    void authorizationRequestsAreChecked()
    {
        QFETCH(QString, field);
        QFETCH(QString, value);
        Fields fields = authorizationFields();
        fields.insert(field, value);
        const Reply page = get(u"/o/oauth2/v2/auth?"_s + QString::fromLatin1(encoded(fields)));
        QCOMPARE(page.status, 400);
        QVERIFY(page.body.contains(field.toLatin1()) && !page.body.contains("<form"));
    }

    void exchangesAreChecked_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("error");
        const QString invalidGrant = u"invalid_grant"_s;
        QTest::newRow("wrong verifier") << u"code_verifier"_s << verifier() + u'x' << 400 << invalidGrant;
        QTest::newRow("no verifier") << u"code_verifier"_s << QString() << 400 << invalidGrant;
        QTest::newRow("made-up code") << u"code"_s << u"4/sample-guess"_s << 400 << invalidGrant;
        QTest::newRow("another redirect_uri")
            << u"redirect_uri"_s << u"http://127.0.0.1:1/callback"_s << 400 << u"redirect_uri_mismatch"_s;
        QTest::newRow("another client") << u"client_id"_s << u"thief"_s << 401 << u"unauthorized_client"_s;
        QTest::newRow("no client") << u"client_id"_s << QString() << 400 << u"invalid_request"_s;
        QTest::newRow("no secret") << u"client_secret"_s << QString() << 400 << u"invalid_request"_s;
        QTest::newRow("unknown grant type")
            << u"grant_type"_s << u"password"_s << 400 << u"unsupported_grant_type"_s;
    }

    void exchangesAreChecked()
    {
        QFETCH(QString, field);
        QFETCH(QString, value);
        QVERIFY(consent(authorizationFields()));
        Fields fields = exchangeFields();
        fields.insert(field, value);
        const Reply reply = post(u"/token"_s, encoded(fields));
        QTEST(reply.status, "status");
        QTEST(reply.error(), "error");
        QVERIFY(!reply.json().value(u"error_description").toString().isEmpty());
    }

    void aCodeIsGoodOnceAndNotForLong()
    {
        QVERIFY(consent(authorizationFields()));
        QCOMPARE(post(u"/token"_s, encoded(exchangeFields())).status, 200);
        QCOMPARE(post(u"/token"_s, encoded(exchangeFields())).error(), u"invalid_grant"_s);

        QVERIFY(consent(authorizationFields()));
        m_clock.setNow(m_clock.now() + 10min);
        QCOMPARE(post(u"/token"_s, encoded(exchangeFields())).error(), u"invalid_grant"_s);
    }

    void accessEnds_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<bool>("canRefresh");
        QTest::newRow("the token's time is over") << QString() << true;
        QTest::newRow("all tokens expire") << u"/expire-tokens"_s << true;
        QTest::newRow("the refresh token is revoked") << u"/revoke?token=sample-refresh-0"_s << false;
        QTest::newRow("everything is revoked") << u"/revoke-all"_s << false;
    }

    void accessEnds()
    {
        QFETCH(QString, how);
        QFETCH(bool, canRefresh);
        QCOMPARE(get(eventsPath).status, 200);
        if (how.isEmpty())
            m_clock.setNow(m_clock.now() + 3599s);
        else
            QCOMPARE(post(how).status, 200);

        const Reply reply = get(eventsPath);
        QCOMPARE(reply.status, 401);
        QCOMPARE(reply.error(), u"authError"_s);
        QCOMPARE(get(u"/v1/userinfo"_s).status, 401);
        const Reply renewed = refresh(u"sample-refresh-0"_s);
        QCOMPARE(renewed.status, canRefresh ? 200 : 400);
        QCOMPARE(renewed.error(), canRefresh ? QString() : u"invalid_grant"_s);
        if (canRefresh) {
            m_accessToken = renewed.json().value(u"access_token").toString().toLatin1();
            QCOMPARE(get(eventsPath).status, 200);
        }
    }

    void aTokenReachesOnlyItsScopes()
    {
        Fields fields = authorizationFields();
        fields.insert(u"scope"_s, u"openid email"_s);
        QVERIFY(consent(fields));
        m_accessToken =
            post(u"/token"_s, encoded(exchangeFields())).json().value(u"access_token").toString().toLatin1();
        QCOMPARE(get(u"/v1/userinfo"_s).status, 200);
        QCOMPARE(get(u"/calendar/v3/users/me/calendarList"_s).status, 403);
        QCOMPARE(get(eventsPath).status, 403);
    }

    void eventsLieInTheWindowByStart_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<QStringList>("ids");
        // ended at 08:30, runs 08:50 to 09:35, 09:04 to 09:29, 09:35 to 10:20, 10:00 to 11:00
        const QStringList first { u"sample001"_s, u"sample002"_s, u"sample003_20300115T090400Z"_s,
                                  u"sample004_20300115T093500Z"_s, u"sample005_20300115T100000Z"_s };
        QTest::newRow("what has ended at its beginning is out, what starts at its end too")
            << u"timeMin=2030-01-15T08:30:00Z&timeMax=2030-01-15T10:00:00Z"_s << first.mid(1, 3);
        QTest::newRow("a second more at both ends")
            << u"timeMin=2030-01-15T08:29:59Z&timeMax=2030-01-15T10:00:01Z"_s << first;
        QTest::newRow("bounds with an offset")
            << u"timeMin=2030-01-15T14:00:00%2B05:30&timeMax=2030-01-15T04:30:00-05:30"_s << first.mid(1, 3);
        QTest::newRow("the first of many")
            << u"timeMin=2030-01-15T08:30:00Z&maxResults=2"_s << first.mid(1, 2);
        QTest::newRow("same start: the table's order")
            << u"timeMin=2030-01-15T11:00:00Z&timeMax=2030-01-15T11:01:00Z"_s
            << QStringList { u"sample006_20300115T110000Z"_s, u"sample007_20300115T110000Z"_s };
        QTest::newRow("the same rows, the next day")
            << u"timeMin=2030-01-16T10:59:00Z&timeMax=2030-01-16T11:01:00Z"_s
            << QStringList { u"sample005_20300116T100000Z"_s, u"sample006_20300116T110000Z"_s,
                             u"sample007_20300116T110000Z"_s };
        QTest::newRow("no length") << u"timeMin=2030-01-15T11:59:59Z&timeMax=2030-01-15T12:00:01Z"_s
                                   << QStringList { u"sample016"_s };
    }

    void eventsLieInTheWindowByStart()
    {
        QFETCH(QString, query);
        const Reply reply = get(eventsPath + u"?singleEvents=true&orderBy=startTime&"_s + query);
        QCOMPARE(reply.status, 200);
        QTEST(idsOf(reply), "ids");
    }

    void eventsStayWhatTheyAreWhileTimePasses()
    {
        const Reply now = get(eventsPath + window);
        QVERIFY(idsOf(now).size() > 15);
        m_clock.setNow(m_clock.now() + 17min + 3s);
        QCOMPARE(get(eventsPath + window).body, now.body);
    }

    void pagesHoldEverythingOnce()
    {
        const QStringList all = idsOf(get(eventsPath + window));
        QStringList collected;
        QString page;
        do {
            const Reply small = get(QString(eventsPath + window).replace(u"=250"_s, u"=7"_s)
                                    + (page.isEmpty() ? QString() : u"&pageToken="_s + page));
            QVERIFY(!idsOf(small).isEmpty());
            collected += idsOf(small);
            page = small.json().value(u"nextPageToken").toString();
            QCOMPARE(page.isEmpty(), small.json().contains(u"nextSyncToken"));
        } while (!page.isEmpty());
        QCOMPARE(collected, all);
    }

    void queriesAreChecked_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("error");
        const auto invalid = [](const char *name, const QString &query) {
            QTest::newRow(name) << eventsPath + u'?' + query << 400 << u"invalidParameter"_s;
        };
        invalid("a date without a time", u"timeMin=2030-01-15"_s);
        invalid("a time without a zone", u"timeMax=2030-01-15T09:00:00"_s);
        invalid("maxResults of none", u"maxResults=0"_s);
        invalid("maxResults in words", u"maxResults=many"_s);
        invalid("singleEvents that is neither", u"singleEvents=maybe"_s);
        invalid("an order of its own", u"singleEvents=true&orderBy=title"_s);
        invalid("a page of another server", u"pageToken=7"_s);
        QTest::newRow("an empty window")
            << eventsPath + u"?timeMin=2030-01-15T09:00:00Z&timeMax=2030-01-15T09:00:00Z"_s << 400
            << u"timeRangeEmpty"_s;
        QTest::newRow("order without single events")
            << eventsPath + u"?orderBy=startTime"_s << 400 << u"badRequest"_s;
        QTest::newRow("sync token and a window")
            << eventsPath + u"?syncToken=sample-sync-0&timeMin=2030-01-15T09:00:00Z"_s << 400
            << u"badRequest"_s;
        QTest::newRow("old sync token")
            << eventsPath + u"?syncToken=sample-sync-9"_s << 410 << u"fullSyncRequired"_s;
        QTest::newRow("role of nobody")
            << u"/calendar/v3/users/me/calendarList?minAccessRole=king"_s << 400 << u"invalidParameter"_s;
        QTest::newRow("unknown calendar")
            << u"/calendar/v3/calendars/nobody@example.com/events"_s << 404 << u"notFound"_s;
        QTest::newRow("another account's calendar")
            << u"/calendar/v3/calendars/casey.sample@example.org/events"_s << 404 << u"notFound"_s;
        QTest::newRow("unknown address") << u"/calendar/v3/calendars/primary"_s << 404 << u"notFound"_s;
    }

    void queriesAreChecked()
    {
        QFETCH(QString, target);
        const Reply reply = get(target);
        QTEST(reply.status, "status");
        QTEST(reply.error(), "error");
    }

    void aCalendarWithANumberSignIsFoundByItsEncodedName()
    {
        const Reply reply = get(
            u"/calendar/v3/calendars/en.sample%23holiday@group.v.calendar.example.com/events?singleEvents=true"_s);
        const QJsonValue first = reply.json().value(u"items")[0];
        QCOMPARE(first[u"start"].toObject(), (QJsonObject { { u"date"_s, u"2030-01-15"_s } }));
        QCOMPARE(first[u"end"].toObject(), (QJsonObject { { u"date"_s, u"2030-01-16"_s } }));
    }

    void eventsChangeAtRuntime()
    {
        const auto change = [this](QJsonObject body) {
            body.insert(u"account"_s, u"robin.sample@example.com"_s);
            body.insert(u"calendar"_s, u"primary"_s);
            return post(u"/calendar-events"_s, QJsonDocument(body).toJson());
        };
        const auto titles = [this] {
            QStringList found;
            for (const QJsonValue item : get(eventsPath + window).json().value(u"items").toArray()) {
                if (item[u"id"].toString() == u"extra")
                    found += item[u"start"][u"dateTime"].toString() + u' ' + item[u"summary"].toString();
            }
            return found;
        };
        const auto row = [](double minutes) {
            return QJsonObject { { u"event"_s,
                                   QJsonObject { { u"id"_s, u"extra"_s },
                                                 { u"title"_s, u"Fire drill"_s },
                                                 { u"startsInMinutes"_s, minutes } } } };
        };
        const QString syncToken = get(eventsPath + window).json().value(u"nextSyncToken").toString();
        QCOMPARE(get(eventsPath + u"?syncToken="_s + syncToken).status, 200);

        // the tests' zone is half an hour off
        QCOMPARE(change(row(1.5)).status, 200);
        QCOMPARE(titles(), QStringList { u"2030-01-15T05:31:30-03:30 Fire drill"_s });
        QCOMPARE(change(row(2)).status, 200);
        QCOMPARE(titles(), QStringList { u"2030-01-15T05:32:00-03:30 Fire drill"_s });
        QCOMPARE(get(eventsPath + u"?syncToken="_s + syncToken).status, 410);
        QCOMPARE(change(QJsonObject { { u"remove"_s, u"extra"_s } }).status, 200);
        QCOMPARE(titles(), QStringList());

        QCOMPARE(change(QJsonObject { { u"remove"_s, u"extra"_s } }).status, 404);
        QCOMPARE(change(QJsonObject { { u"event"_s, QJsonObject { { u"id"_s, u"extra"_s } } } }).status, 400);
        const QJsonObject slip { { u"id"_s, u"x"_s }, { u"startsInMinutes"_s, 1 }, { u"titel"_s, u"?"_s } };
        QCOMPARE(change(QJsonObject { { u"event"_s, slip } }).status, 400);
    }

    void faultsComeOnceAndGo_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("sign"); ///< of the answer: what it must hold
        for (const auto &[status, reason] : { std::pair { 401, u"authError"_s },
                                              { 403, u"rateLimitExceeded"_s },
                                              { 410, u"fullSyncRequired"_s },
                                              { 429, u"rateLimitExceeded"_s },
                                              { 500, u"backendError"_s },
                                              { 503, u"backendError"_s } })
            QTest::addRow("status %d", status) << u"status:%1"_s.arg(status) << status << reason;
        QTest::newRow("slow") << u"slow:1"_s << 200 << u"sample002"_s;
        QTest::newRow("drip") << u"drip"_s << 200 << u"sample002"_s;
        QTest::newRow("half") << u"half"_s << 200 << QString();
        QTest::newRow("garbage") << u"garbage"_s << 200 << u"and so on"_s;
        QTest::newRow("html") << u"html"_s << 200 << u"<!DOCTYPE html>"_s;
        QTest::newRow("huge") << u"huge:100000"_s << 200 << u"xxxx"_s;
        QTest::newRow("redirect") << u"redirect:http://127.0.0.1:1/away"_s << 302 << QString();
        QTest::newRow("cookie") << u"cookie"_s << 200 << u"sample002"_s;
    }

    void faultsComeOnceAndGo()
    {
        QFETCH(QString, fault);
        QFETCH(QString, sign);
        const QByteArray right = get(eventsPath + window).body;
        const auto armed = Fault::fromCommandLine(eventsPath + u'=' + fault + u"*1"_s);
        QVERIFY(armed);
        QCOMPARE(post(u"/faults"_s, QJsonDocument(armed->toJson()).toJson()).status, 200);

        const Reply faulty = get(eventsPath + window);
        QTEST(faulty.status, "status");
        QVERIFY(faulty.body.contains(sign.toUtf8()));
        QCOMPARE(faulty.isBroken, fault == u"half");
        const bool isRightInTheEnd = sign == u"sample002";
        QCOMPARE(faulty.body == right, isRightInTheEnd);
        QCOMPARE(faulty.cookie.isEmpty(), fault != u"cookie");
        QCOMPARE(faulty.contentType.startsWith("text/html"), fault == u"html");
        QCOMPARE(faulty.location,
                 faulty.status == 302 ? QByteArray("http://127.0.0.1:1/away") : QByteArray());
        if (faulty.status == 200 && !isRightInTheEnd && !fault.startsWith(u"huge"))
            QVERIFY(faulty.json().isEmpty());
        if (fault.startsWith(u"huge"))
            QCOMPARE(faulty.body.size(), 100'000);

        QCOMPARE(get(eventsPath + window).body, right);
    }

    void aClosedConnectionCarriesNothing()
    {
        m_google->addFault(Fault::fromCommandLine(eventsPath + u"=close"_s).value());
        const Reply reply = get(eventsPath);
        QVERIFY(reply.isBroken);
        QCOMPARE(reply.status, 0);
        QCOMPARE(send("DELETE", u"/faults"_s).status, 200);
        QCOMPARE(get(eventsPath).status, 200);
    }

    void theRequestLogTellsNoValues()
    {
        QCOMPARE(send("DELETE", u"/requests"_s).status, 200);
        QVERIFY(consent(authorizationFields()));
        QCOMPARE(post(u"/token"_s, encoded(exchangeFields())).status, 200);
        m_google->addFault(Fault::fromCommandLine(eventsPath + u"=cookie*1"_s).value());
        QCOMPARE(get(eventsPath + u"?maxResults=5"_s).status, 200);
        QCOMPARE(post(u"/revoke?token=sample-refresh-0"_s).status, 200);

        const Reply log = get(u"/requests"_s);
        QCOMPARE(log.json().value(u"count").toInt(), 5);
        const QJsonArray requests = log.json().value(u"requests").toArray();
        QJsonObject events = requests[3].toObject();
        events.remove(u"connection"_s);
        QCOMPARE(events,
                 (QJsonObject { { u"method"_s, u"GET"_s },
                                { u"path"_s, eventsPath },
                                { u"query"_s, QJsonArray { u"maxResults"_s } },
                                { u"authorization"_s, true },
                                { u"cookie"_s, false },
                                { u"status"_s, 200 } }));
        QCOMPARE(requests[0][u"authorization"].toBool(), false); // the browser
        QCOMPARE(requests[4][u"cookie"].toBool(), true); // what the fault set comes back
        for (const QByteArray &secret : { m_accessToken, QByteArray("sample-refresh"), QByteArray("4/sample"),
                                          verifier().toLatin1(), QByteArray("sample-secret") })
            QVERIFY2(!log.body.contains(secret), secret.constData());
    }

    void aGeneratedLoadFillsItsPages()
    {
        start({ .load = LoadSize { .accounts = 2, .calendars = 3, .events = 251 } });
        QCOMPARE(idsOf(get(u"/calendar/v3/users/me/calendarList"_s)).size(), 3);
        const Reply page = get(eventsPath + window);
        QCOMPARE(idsOf(page).size(), 250);
        QVERIFY(page.json().contains(u"nextPageToken"));
        QVERIFY2(page.body.size() > 550'000 && page.body.size() < 650'000,
                 QByteArray::number(page.body.size()));

        const QString second = refresh(u"sample-refresh-1"_s).json().value(u"access_token").toString();
        m_accessToken = second.toLatin1();
        QCOMPARE(get(u"/v1/userinfo"_s).json().value(u"email").toString(), u"load.1@example.com"_s);
        QCOMPARE(refresh(u"sample-refresh-2"_s).error(), u"invalid_grant"_s);
    }
};

QTEST_GUILESS_MAIN(TestSampleGoogle)
#include "TestSampleGoogle.moc"
