#include "google/GoogleCalendarClient.h"
#include "google/PageTurns.h"
#include "support/FakeGoogle.h"
#include <QTest>
#include <QTimer>
#include <QUrlQuery>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

/// As a test row holds it.
struct Answer
{
    FakeHttpTransport::Answer value;
};

constexpr auto noItems = R"({"items":[]})";

HttpResponse http(int status, const QByteArray &body = "the body")
{
    return { status, body };
}

/// One signed-in account and its client.
struct Account
{
    FakeGoogle google;
    QString id = google.account(u"A"_s).id;
    GoogleOAuth oauth { id, google.services() };
    GoogleCalendarClient client { oauth, google.transport, google.endpoints.calendarApi,
                                  std::make_shared<PageTurns>() };

    ~Account() { google.finish(); }

    std::expected<Google::EventsListResponse, CalendarFailure> primaryEvents()
    {
        return QCoro::waitFor(client.events(u"primary"_s, {}, {}));
    }
};

QCoro::Task<void> countWhenDone(QCoro::Task<std::expected<Google::EventsListResponse, CalendarFailure>> read,
                                int &done)
{
    (void)co_await read;
    ++done;
}

} // namespace

class TestGoogleCalendarClient : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void calendarIdentifiersAreEncodedForThePath()
    {
        const QString calendarID = u"en.uk#holiday@group -._~!$&'()*+,;=:@/0Az?a%23b\"[]^é"_s;
        Account account;
        account.google.answerEvents(calendarID, {});
        QVERIFY(QCoro::waitFor(account.client.events(calendarID, {}, {})));
        QCOMPARE(account.google.transport.requests.value(0).url.toEncoded(),
                 "https://calendar.example.com/calendar/v3/calendars/"
                 "en.uk%23holiday@group%20-._~!$&'()*+,;=:@/0Az%3Fa%2523b%22%5B%5D%5E%C3%A9"
                 "/events?singleEvents=true&maxResults=250&orderBy=startTime");
    }

    void queriesHoldWhatWasAskedForInOrder_data()
    {
        QTest::addColumn<std::optional<Instant>>("timeMin");
        QTest::addColumn<std::optional<Instant>>("timeMax");
        QTest::addColumn<std::optional<QString>>("syncToken");
        QTest::addColumn<QByteArray>("query");
        const std::optional<Instant> none;
        const std::optional<QString> noToken;
        const auto early = parseInternetDateTime(u"2025-03-01T23:30:00.750-05:00");
        const auto late = parseInternetDateTime(u"2025-03-03T00:00:00Z");
        QTest::newRow("both bounds, in UTC without fraction")
            << early << late << noToken
            << QByteArray("&orderBy=startTime&timeMin=2025-03-02T04:30:00Z&timeMax=2025-03-03T00:00:00Z");
        QTest::newRow("lower bound") << late << none << noToken
                                     << QByteArray("&orderBy=startTime&timeMin=2025-03-03T00:00:00Z");
        QTest::newRow("a sync token takes the bounds' place")
            << early << late << std::optional(u"a+b&c=d#e%20/?"_s)
            << QByteArray("&syncToken=a%2Bb%26c%3Dd%23e%2520%2F%3F");
    }

    void queriesHoldWhatWasAskedForInOrder()
    {
        QFETCH(std::optional<Instant>, timeMin);
        QFETCH(std::optional<Instant>, timeMax);
        QFETCH(std::optional<QString>, syncToken);
        QFETCH(QByteArray, query);
        Account account;
        account.google.answerEvents(u"primary"_s, {});
        QVERIFY(QCoro::waitFor(account.client.events(u"primary"_s, timeMin, timeMax, syncToken)));
        QCOMPARE(account.google.transport.requests.first().url.toEncoded(),
                 "https://calendar.example.com/calendar/v3/calendars/primary/"
                 "events?singleEvents=true&maxResults=250"
                     + query);
    }

    void requestsCarryTokenAccountAndTimeout()
    {
        Account account;
        auto &transport = account.google.transport;
        transport.answer(u"/calendar/v3/users/me/calendarList"_s, 200,
                         R"({"items":[{"id":"a","summary":"A","primary":true}]})");
        const auto list = QCoro::waitFor(account.client.calendarList());
        QVERIFY(list);
        QCOMPARE(list->items.size(), 1);

        const HttpRequest request = transport.requests.value(0);
        QCOMPARE(request.url.toEncoded(),
                 "https://calendar.example.com/calendar/v3/users/me/calendarList?minAccessRole=reader");
        QCOMPARE(request.method, "GET");
        QVERIFY(request.body.isEmpty());
        QCOMPARE(request.headers,
                 (QList<std::pair<QByteArray, QByteArray>> { { "Authorization", "Bearer token of A" },
                                                             { "Accept", "application/json" } }));
        QCOMPARE(request.timeout, 60s);
        QCOMPARE(request.account, account.id);
    }

    void answersEndAs_data()
    {
        const auto kindOf = [](TransportError::Kind kind) {
            return Answer { std::unexpected(TransportError { kind, u"what the network said"_s }) };
        };
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<QString>("description"); // of the failure; a final "…" stands for any ending
        QTest::newRow("success") << Answer { http(200, noItems) } << QString();
        QTest::newRow("410") << Answer { http(410) } << u"Full sync required (410)"_s;
        QTest::newRow("no HTTP") << Answer { HttpResponse { {}, "220 mail" } } << u"HTTP -1: 220 mail"_s;
        QTest::newRow("no items") << Answer { http(200, "{}") } << u"Decoding failed: …"_s;
        QTest::newRow("too large") << kindOf(TransportError::Kind::AnswerTooLarge)
                                   << u"Decoding failed: answer too large"_s;
        QTest::newRow("network") << kindOf(TransportError::Kind::Network)
                                 << description(AuthError(TransportError { TransportError::Kind::Network,
                                                                           u"what the network said"_s }));
    }

    void answersEndAs()
    {
        QFETCH(Answer, answer);
        QFETCH(QString, description);
        Account account;
        account.google.transport.answer(FakeGoogle::eventsPath(), answer.value);
        const auto events = account.primaryEvents();
        const QString found = events ? QString() : kestrel::description(events.error());
        if (description.endsWith(u'…')) {
            QVERIFY2(found.size() >= description.size() && found.startsWith(description.chopped(1)),
                     qPrintable(found));
        } else {
            QCOMPARE(found, description);
        }
        QCOMPARE(account.google.transport.requests.size(), 1);
    }

    void refusedTokenIsRefreshedOnce_data()
    {
        QTest::addColumn<Answer>("second");
        QTest::addColumn<QString>("description");
        QTest::newRow("then accepted") << Answer { http(200, noItems) } << QString();
        QTest::newRow("then refused again") << Answer { http(401) } << u"HTTP 401: the body"_s;
    }

    void refusedTokenIsRefreshedOnce()
    {
        QFETCH(Answer, second);
        QFETCH(QString, description);
        Account account;
        auto &transport = account.google.transport;
        transport.answer(FakeGoogle::eventsPath(), http(401, "first"));
        transport.answer(FakeGoogle::eventsPath(), second.value);
        transport.answer(u"/token"_s, 200, R"({"access_token":"fresh","expires_in":3600})");

        const auto events = account.primaryEvents();
        QCOMPARE(events ? QString() : kestrel::description(events.error()), description);
        QCOMPARE(transport.requestsTo(u"/token"_s), 1);
        QCOMPARE(transport.requestsTo(FakeGoogle::eventsPath()), 2);
        QCOMPARE(transport.requests.last().headers.first().second, "Bearer fresh");
    }

    void offlineReadsAskForNoTokenAndTheNewerTakesTheOldersPlace()
    {
        Account account;
        FakeGoogle::settle(); // the sign-in has read its refresh token
        auto &google = account.google;
        google.answerEvents(u"primary"_s, { { u"e"_s } });
        google.transport.setOnline(false);
        const auto calls = google.secrets.calls;

        auto older = account.client.events(u"primary"_s, {}, {});
        auto other = account.client.events(u"team"_s, {}, {});
        auto newer = account.client.events(u"primary"_s, {}, {});
        const auto olderEnd = QCoro::waitFor(older);
        QVERIFY(!olderEnd);
        QVERIFY(isSuperseded(olderEnd.error()));
        QCOMPARE(google.transport.waiting, 2);
        QVERIFY(!newer.isReady());
        QVERIFY(!other.isReady());
        QCOMPARE(google.secrets.calls, calls);
        QVERIFY(google.transport.requests.isEmpty());

        google.transport.setOnline(true);
        const auto newerEnd = QCoro::waitFor(newer);
        QVERIFY(newerEnd);
        QCOMPARE(newerEnd->items.size(), 1);
        const auto otherEnd = QCoro::waitFor(other);
        QVERIFY(!otherEnd);
        QVERIFY(!isSuperseded(otherEnd.error()));
    }

    void answersThatComeTogetherAreDecodedOneATurn()
    {
        constexpr int pages = 6;
        Account account;
        auto &google = account.google;
        google.answerEvents(u"primary"_s, { { u"e"_s } });
        google.transport.hold();
        int done = 0;
        std::vector<QCoro::Task<void>> reads;
        reads.reserve(pages);
        for (int page = 0; page < pages; ++page)
            reads.push_back(countWhenDone(account.client.events(u"primary"_s, {}, {}), done));

        int doneBefore = 0;
        int mostInOneTurn = 0;
        QTimer everyTurn;
        connect(&everyTurn, &QTimer::timeout, this, [&] {
            mostInOneTurn = std::max(mostInOneTurn, done - doneBefore);
            doneBefore = done;
        });
        everyTurn.start(0);
        google.transport.release();
        QTRY_COMPARE(doneBefore, pages);
        QCOMPARE(mostInOneTurn, 1);
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestGoogleCalendarClient)
#include "TestGoogleCalendarClient.moc"
