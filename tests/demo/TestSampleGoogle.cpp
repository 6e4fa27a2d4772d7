#include "demo/SampleGoogle.h"
#include "demo/ScriptedConsent.h"
#include <QCoro/QCoroTask>
#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpSocket>
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
                 .body = reply->readAll() };
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

    std::expected<void, QString> consent(const Fields &fields, const QString &account = {})
    {
        m_redirect.clear();
        QUrl page = m_google->base();
        page.setPath(u"/o/oauth2/v2/auth"_s);
        page.setQuery(QString::fromLatin1(encoded(fields)));
        return QCoro::waitFor(press({ .page = page, .account = account }));
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

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_callback.listen(0)); }

    void init()
    {
        m_clock.setNow(at(u"2030-01-15T09:00:00Z"));
        m_network.clearConnectionCache();
        m_accessToken.clear();
        SampleGoogle::Options options;
        options.anchor = SampleGoogle::anchorFor(m_clock.now());
        options.acceptsSampleTokens = true;
        m_google = std::make_unique<SampleGoogle>(options, m_clock);
        QVERIFY(m_google->listen());
        m_accessToken = refresh(u"sample-refresh-0"_s).json().value(u"access_token").toString().toLatin1();
        QVERIFY(!m_accessToken.isEmpty());
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

    void consentIsPressedOnLoopbackAlone()
    {
        // links of meetings come to the same program
        for (const auto &page :
             { u"https://example.zoom.us/j/1234567890"_s, u"http://127.0.0.1.example.com/"_s })
            QVERIFY(!QCoro::waitFor(press({ .page = QUrl(page), .account = {} })));
    }

    void answersOn127001AloneAndGivesFaultsInTheirOrder()
    {
        QTcpSocket elsewhere;
        elsewhere.connectToHost(u"127.0.0.2"_s,
                                static_cast<quint16>(m_google->base().port())); // this machine too
        QTRY_VERIFY(elsewhere.error() == QAbstractSocket::ConnectionRefusedError);

        for (const QString &text : { u"=status:503*1"_s, u"=status:403*1"_s })
            m_google->addFault(Fault::fromCommandLine(eventsPath + text).value());
        QCOMPARE(get(eventsPath).status, 503);
        QCOMPARE(get(eventsPath).status, 403);
        QCOMPARE(get(eventsPath).status, 200);
        for (const auto &slip : { u"/token"_s, u"token=close"_s, u"/token=mould"_s, u"/token=status:200"_s,
                                  u"/token=close*0"_s, u"/token=redirect:elsewhere"_s })
            QVERIFY2(!Fault::fromCommandLine(slip), qPrintable(slip));
    }

    void authorizationRequestsAreChecked_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("value");
        for (const QString &address :
             { u"http://example.com:80/callback"_s, u"http://127.0.0.1.example.com:8/callback"_s,
               u"http://127.0.0.1:8@example.com/callback"_s, u"http://127.0.0.1/callback"_s })
            QTest::addRow("redirect to %s", qPrintable(address)) << u"redirect_uri"_s << address;
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

    void exchangesAreCheckedAndACodeIsGoodOnce()
    {
        for (const auto &[field, value] : { std::pair { u"code_verifier"_s, verifier() + u'x' },
                                            { u"redirect_uri"_s, u"http://127.0.0.1:1/callback"_s },
                                            { u"client_id"_s, u"thief"_s } }) {
            QVERIFY(consent(authorizationFields()));
            Fields fields = exchangeFields();
            fields.insert(field, value);
            QVERIFY2(!post(u"/token"_s, encoded(fields)).error().isEmpty(), qPrintable(field));
        }

        QVERIFY(consent(authorizationFields()));
        QCOMPARE(post(u"/token"_s, encoded(exchangeFields())).status, 200);
        QCOMPARE(post(u"/token"_s, encoded(exchangeFields())).error(), u"invalid_grant"_s);
        QVERIFY(consent(authorizationFields()));
        m_clock.setNow(m_clock.now() + 10min);
        QCOMPARE(post(u"/token"_s, encoded(exchangeFields())).error(), u"invalid_grant"_s);
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
        QTest::newRow("bounds with an offset")
            << u"timeMin=2030-01-15T14:00:00%2B05:30&timeMax=2030-01-15T04:30:00-05:30"_s << first.mid(1, 3);
        QTest::newRow("same start: the table's order")
            << u"timeMin=2030-01-15T11:00:00Z&timeMax=2030-01-15T11:01:00Z"_s
            << QStringList { u"sample006_20300115T110000Z"_s, u"sample007_20300115T110000Z"_s };
        QTest::newRow("the same rows, the next day")
            << u"timeMin=2030-01-16T10:59:00Z&timeMax=2030-01-16T11:01:00Z"_s
            << QStringList { u"sample005_20300116T100000Z"_s, u"sample006_20300116T110000Z"_s,
                             u"sample007_20300116T110000Z"_s };
    }

    void eventsLieInTheWindowByStart()
    {
        QFETCH(QString, query);
        const Reply reply = get(eventsPath + u"?singleEvents=true&orderBy=startTime&"_s + query);
        QCOMPARE(reply.status, 200);
        QTEST(idsOf(reply), "ids");
    }

    void eventsChangeAtRuntime()
    {
        const auto change = [this](const QByteArray &what) {
            return post(u"/calendar-events"_s,
                        R"({"account":"robin.sample@example.com","calendar":"primary",)" + what + '}')
                .status;
        };
        const auto starts = [this] {
            QStringList found;
            for (const QJsonValue item : get(eventsPath + window).json().value(u"items").toArray()) {
                if (item[u"id"].toString() == u"extra")
                    found += item[u"start"][u"dateTime"].toString();
            }
            return found;
        };
        const QString syncToken = get(eventsPath + window).json().value(u"nextSyncToken").toString();

        // the tests' zone is half an hour off
        QCOMPARE(change(R"("event":{"id":"extra","title":"Fire drill","startsInMinutes":1.5})"), 200);
        QCOMPARE(starts(), QStringList { u"2030-01-15T05:31:30-03:30"_s });
        QCOMPARE(change(R"("event":{"id":"extra","title":"Fire drill","startsInMinutes":2})"), 200);
        QCOMPARE(starts(), QStringList { u"2030-01-15T05:32:00-03:30"_s });
        QCOMPARE(get(eventsPath + u"?syncToken="_s + syncToken).status, 410);
        QCOMPARE(change(R"("remove":"extra")"), 200);
        QCOMPARE(starts(), QStringList());

        QCOMPARE(change(R"("remove":"extra")"), 404);
        QCOMPARE(change(R"("event":{"id":"x","startsInMinutes":1,"titel":"?"})"), 400);
    }

    void theRequestLogTellsNoValues()
    {
        QCOMPARE(send("DELETE", u"/requests"_s).status, 200);
        QVERIFY(consent(authorizationFields()));
        QCOMPARE(post(u"/token"_s, encoded(exchangeFields())).status, 200);
        QCOMPARE(get(eventsPath + u"?maxResults=5"_s).status, 200);
        QCOMPARE(post(u"/revoke?token=sample-refresh-0"_s).status, 200);

        const Reply log = get(u"/requests"_s);
        const QJsonArray requests = log.json().value(u"requests").toArray();
        QCOMPARE(requests.size(), 5);
        QCOMPARE(requests[3][u"path"].toString(), eventsPath);
        QCOMPARE(requests[3][u"query"].toArray(), QJsonArray { u"maxResults"_s });
        QCOMPARE(requests[3][u"authorization"].toBool(), true);
        for (const QByteArray &secret : { m_accessToken, QByteArray("sample-refresh"), QByteArray("4/sample"),
                                          verifier().toLatin1(), QByteArray("sample-secret") })
            QVERIFY2(!log.body.contains(secret), secret.constData());
    }
};

QTEST_GUILESS_MAIN(TestSampleGoogle)
#include "TestSampleGoogle.moc"
