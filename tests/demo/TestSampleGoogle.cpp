#include "demo/SampleGoogle.h"
#include "demo/ScriptedConsent.h"
#include <QCoro/QCoroTask>
#include <QCryptographicHash>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTest>
#include <memory>

using namespace Qt::StringLiterals;
using namespace kestrel;
using namespace kestrel::demo;
using namespace std::chrono_literals;

namespace {

struct Reply
{
    int status = 0;
    QByteArray body;

    [[nodiscard]] QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
    [[nodiscard]] QString error() const { return json().value(u"error").toString(); }
};

using Fields = QMap<QString, QString>;

QByteArray encoded(const Fields &fields)
{
    QByteArray text;
    for (const auto &[name, value] : fields.asKeyValueRange())
        text += (text.isEmpty() ? "" : "&") + name.toUtf8() + '=' + QUrl::toPercentEncoding(value);
    return text;
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

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_callback.listen(0)); }

    void init()
    {
        m_clock.setNow(at(u"2030-01-15T09:00:00Z"));
        m_network.clearConnectionCache();
        SampleGoogle::Options options;
        options.anchor = SampleGoogle::anchorFor(m_clock.now());
        m_google = std::make_unique<SampleGoogle>(options, m_clock);
        QVERIFY(m_google->listen());
    }

    void consentIsPressedOnLoopbackAlone()
    {
        // links of meetings come to the same program
        for (const auto &page :
             { u"https://example.zoom.us/j/1234567890"_s, u"http://127.0.0.1.example.com/"_s })
            QVERIFY(!QCoro::waitFor(press({ .page = QUrl(page), .account = {} })));
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
};

QTEST_GUILESS_MAIN(TestSampleGoogle)
#include "TestSampleGoogle.moc"
