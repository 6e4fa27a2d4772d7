#include "auth/PlayedBrowser.h"
#include "google/GoogleProvider.h"
#include "support/FakeGoogle.h"
#include <QSignalSpy>
#include <QTest>
#include <QUuid>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

const QString calendarListPath = u"/calendar/v3/users/me/calendarList"_s;
constexpr auto calendarList = R"({"items":[
    {"id":"team","summary":"Team","backgroundColor":"#00ff00"},
    {"id":"ada@example.com","summary":"Ada","primary":true,"backgroundColor":"#0000ff"},
    {"id":"plain","summary":"Plain"}]})";

/// A provider with one registered account, "A".
struct Provider
{
    FakeGoogle google;
    AccountRegistry registry { google.preferences };
    std::unique_ptr<GoogleProvider> provider;

    Provider()
    {
        registry.add(google.account(u"A"_s));
        provider = std::make_unique<GoogleProvider>(registry, google.services());
        FakeGoogle::settle();
    }
    ~Provider() { google.finish(); }

    QCoro::Task<std::expected<QList<Meeting>, FetchError>> fetch(const QStringList &calendarIDs)
    {
        return provider->fetchUpcomingMeetings(u"A"_s, calendarIDs, google.clock.now() - 1h,
                                               google.clock.now() + 24h);
    }
};

} // namespace

class TestGoogleProvider : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void colorIsTheOverrideElseTheProviders_data()
    {
        QTest::addColumn<QString>("calendarID");
        QTest::addColumn<bool>("isListed");
        QTest::addColumn<QString>("overrideKey");
        QTest::addColumn<std::optional<QString>>("color");
        const std::optional<QString> none;
        const auto chosen = std::optional(u"#abcdef"_s);
        const auto blue = std::optional(u"#0000ff"_s);
        QTest::newRow("primary, listed, override of the identifier behind it")
            << u"primary"_s << true << u"ada@example.com"_s << chosen;
        QTest::newRow("primary, listed, override of the alias")
            << u"primary"_s << true << u"primary"_s << blue;
        QTest::newRow("primary, not listed") << u"primary"_s << false << QString() << none;
        QTest::newRow("primary, not listed, override of the alias")
            << u"primary"_s << false << u"primary"_s << chosen;
        QTest::newRow("other calendar, override") << u"team"_s << true << u"team"_s << chosen;
        QTest::newRow("unlisted calendar, override") << u"gone"_s << true << u"gone"_s << chosen;
    }

    void colorIsTheOverrideElseTheProviders()
    {
        QFETCH(QString, calendarID);
        QFETCH(bool, isListed);
        QFETCH(QString, overrideKey);
        QFETCH(std::optional<QString>, color);
        Provider account;
        account.google.answerEvents(calendarID, { { u"one"_s } });
        if (isListed) {
            account.google.transport.answer(calendarListPath, 200, calendarList);
            QVERIFY(QCoro::waitFor(account.provider->loadCalendars(u"A"_s)));
        }
        if (!overrideKey.isEmpty()) {
            account.registry.update(u"A"_s, [&](CalendarAccount &edited) {
                edited.calendarColorOverrides.insert(overrideKey, u"#abcdef"_s);
            });
        }
        const auto meetings = QCoro::waitFor(account.fetch({ calendarID }));
        QCOMPARE(meetings->size(), 1);
        QCOMPARE(meetings->first().calendarColorHex, color);
    }

    void calendarsAreMergedByStartWithoutTheOneThatFails()
    {
        Provider account;
        account.google.answerEvents(u"one"_s, { { u"b1"_s, 60min }, { u"d1"_s, 90min } });
        account.google.transport.answer(FakeGoogle::eventsPath(u"private@example.com"_s), 404, "gone");
        account.google.answerEvents(u"two"_s, { { u"a2"_s, 30min }, { u"b2"_s, 60min }, { u"c2"_s, 70min } });
        account.google.answerEvents(u"three"_s, { { u"b1"_s, 60min } });
        // the calendar's name is kept from the log
        QTest::ignoreMessage(QtCriticalMsg, "Failed fetching <private> for account A: HTTP 404: gone");
        const auto meetings =
            QCoro::waitFor(account.fetch({ u"one"_s, u"private@example.com"_s, u"two"_s, u"three"_s }));
        QStringList found;
        for (const Meeting &meeting : *meetings)
            found.append(meeting.title + u" of "_s + meeting.calendarID);
        // the same event in two calendars is two meetings
        QCOMPARE(found,
                 (QStringList { u"a2 of two"_s, u"b1 of one"_s, u"b2 of two"_s, u"b1 of three"_s,
                                u"c2 of two"_s, u"d1 of one"_s }));
    }

    void aFaultThatLastsIsSaidOnce()
    {
        Provider account;
        const QString path = FakeGoogle::eventsPath();
        const FakeHttpTransport::Answer unresolved = std::unexpected(
            TransportError { TransportError::Kind::Network, u"Host www.googleapis.com not found"_s });
        for (const auto &answer :
             { unresolved, unresolved, FakeHttpTransport::Answer(HttpResponse { 500, "down" }), unresolved })
            account.google.transport.answer(path, answer);
        account.google.answerEvents(u"primary"_s, { { u"e"_s } });
        account.google.transport.answer(path, unresolved);

        static QStringList said;
        said.clear();
        const auto before = qInstallMessageHandler([](QtMsgType, const auto &, const QString &text) {
            if (!text.startsWith(u"fetchUpcomingMeetings"_s))
                said.append(text);
        });
        QList<qsizetype> read;
        for (int refresh = 0; refresh < 7; ++refresh)
            read.append(QCoro::waitFor(account.fetch({}))->size());
        qInstallMessageHandler(before);

        QCOMPARE(read, (QList<qsizetype> { 0, 0, 0, 0, 1, 0, 0 }));
        const QString failed = u"Failed fetching <private> for account A: "_s;
        const QString notFound = failed + u"Host www.googleapis.com not found"_s;
        QCOMPARE(said,
                 (QStringList { notFound, failed + u"HTTP 500: down"_s,
                                u"Fetching <private> for account A works again"_s, notFound }));
    }

    void signInRegistersAnAccountWhoseSessionIsThere()
    {
        FakeGoogle google;
        google.opener.onOpen = [](const QUrl &url) { comeBack(url, u"?code=a-code&state=STATE"_s); };
        google.transport.answer(u"/token"_s, 200,
                                R"({"access_token":"access","refresh_token":"refresh","expires_in":3600})");
        google.transport.answer(u"/v1/userinfo"_s, 200, R"({"email":"ada@example.com"})");
        AccountRegistry registry(google.preferences);
        GoogleProvider provider(registry, google.services());
        bool wasThere = false;
        connect(&registry, &AccountRegistry::accountsChanged, this, [&] {
            const auto calls = google.secrets.calls;
            const bool isSignedIn = provider.oauth(registry.accounts().constFirst().id).isSignedIn();
            wasThere = isSignedIn && google.secrets.calls == calls; // a new session would have read its token
        });

        const auto account = QCoro::waitFor(provider.signIn());
        QVERIFY2(account, qPrintable(account ? QString() : description(account.error())));
        QVERIFY(wasThere);
        QCOMPARE(registry.accounts(), QList { *account });
        QCOMPARE(account->id, QUuid::fromString(account->id).toString(QUuid::WithoutBraces).toUpper());
        QCOMPARE(account->providerID, u"google"_s);
        QCOMPARE(account->email, u"ada@example.com"_s);
        QCOMPARE(account->displayName, u"Google Calendar"_s);
        QCOMPARE(account->meetLaunchMode, MeetLaunchMode::Popup);
        QVERIFY(account->calendarColorOverrides.isEmpty());
        QCOMPARE(google.secrets.secrets.value(u"google.%1.refresh_token"_s.arg(account->id)), "refresh");
        google.finish();
    }

    void signOutForgetsTheAccount()
    {
        Provider account;
        account.google.transport.answer(calendarListPath, 200, calendarList);
        QVERIFY(QCoro::waitFor(account.provider->loadCalendars(u"A"_s)));
        account.registry.add(account.google.account(u"behind the provider's back"_s));
        account.registry.add(account.google.account(u"other"_s));

        QVERIFY(QCoro::waitFor(account.provider->signOut(u"A"_s)));
        QVERIFY(QCoro::waitFor(account.provider->signOut(u"behind the provider's back"_s)));
        QCOMPARE(account.registry.accounts().size(), 1);
        QCOMPARE(account.registry.accounts()[0].id, u"other"_s);
        QVERIFY(account.provider->calendarsByAccount().isEmpty());
    }

    void signOutThatCannotDeleteTokensChangesNothing()
    {
        Provider account;
        account.google.secrets.failures.insert(u"remove"_s, SecretStatus::Failed);
        const auto signedOut = QCoro::waitFor(account.provider->signOut(u"A"_s));
        QVERIFY(!signedOut);
        QCOMPARE(signedOut.error().status, static_cast<qint32>(SecretStatus::Failed));
        QVERIFY(account.registry.account(u"A"_s));
        QVERIFY(account.provider->oauth(u"A"_s).isSignedIn());
    }

    void signOutEndsAFetchThatIsUnderWay()
    {
        Provider account;
        account.google.answerEvents(u"one"_s, { { u"e"_s } });
        account.google.transport.hold();
        auto fetch = account.fetch({ u"one"_s, u"two"_s });
        FakeGoogle::settle();
        QCOMPARE(account.google.transport.requestsTo(FakeGoogle::eventsPath(u"one"_s)), 1);

        auto signOut = account.provider->signOut(u"A"_s);
        account.google.transport.release(u"/revoke"_s);
        QVERIFY(QCoro::waitFor(signOut));
        account.google.transport.release();
        const auto meetings = QCoro::waitFor(fetch);
        QVERIFY(!meetings);
        QCOMPARE(meetings.error().kind, FetchError::Kind::AccountGone);
        QCOMPARE(account.google.transport.requestsTo(FakeGoogle::eventsPath(u"two"_s)), 0);
    }

    void calendarsOfASignedOutAccountAreNotPublished()
    {
        Provider account;
        account.google.transport.answer(calendarListPath, 200, calendarList);
        account.google.transport.hold();
        auto load = account.provider->loadCalendars(u"A"_s);
        auto signOut = account.provider->signOut(u"A"_s);
        FakeGoogle::settle();
        account.google.transport.release(u"/revoke"_s);
        QVERIFY(QCoro::waitFor(signOut));
        account.google.transport.release();
        QVERIFY(QCoro::waitFor(load));
        QVERIFY(account.provider->calendarsByAccount().isEmpty());
    }

    void tasksOutliveTheProvider()
    {
        Provider account;
        auto &google = account.google;
        google.answerEvents(u"primary"_s, { { u"e"_s } });
        google.transport.answer(calendarListPath, 200, calendarList);
        google.transport.hold();
        auto fetch = account.fetch({});
        auto load = account.provider->loadCalendars(u"A"_s);
        auto signOut = account.provider->signOut(u"A"_s);
        FakeGoogle::settle();
        account.provider.reset();

        google.transport.release();
        const auto meetings = QCoro::waitFor(fetch);
        QVERIFY(!meetings);
        QCOMPARE(meetings.error().kind, FetchError::Kind::AccountGone);
        QVERIFY(QCoro::waitFor(load));
        QVERIFY(QCoro::waitFor(signOut));
        QVERIFY(account.registry.account(u"A"_s)); // nobody was left to take it out
    }

    void aSignInAnewTakesThePlaceOfOneThatNobodyFinishes()
    {
        Provider account;
        account.google.secrets.secrets.clear();
        account.google.transport.answer(
            u"/token"_s, 200, R"({"access_token":"access","refresh_token":"refresh","expires_in":3600})");
        account.google.transport.answer(u"/v1/userinfo"_s, 200, R"({"email":"A@example.com"})");
        auto closed = account.provider->signInAgain(u"A"_s); // the person closes the page
        FakeGoogle::settle();
        account.google.opener.onOpen = [](const QUrl &url) { comeBack(url, u"?code=a-code&state=STATE"_s); };
        const QSignalSpy again(account.provider.get(), &GoogleProvider::signedInAgain);
        auto finished = account.provider->signInAgain(u"A"_s);
        QVERIFY(!QCoro::waitFor(closed));
        QVERIFY(QCoro::waitFor(finished));
        QCOMPARE(again.size(), 1);
        QVERIFY(account.provider->oauth(u"A"_s).isSignedIn());
        QCOMPARE(account.registry.accounts().size(), 1);
    }

    void aSignInAnewLeavesWhatIsGoodUntilItIsDone_data()
    {
        QTest::addColumn<int>("status"); // of the token endpoint
        QTest::addColumn<QString>("chosen");
        QTest::addColumn<QByteArray>("left"); // as the refresh token
        QTest::addColumn<int>("revocations");
        QTest::newRow("the same account") << 200 << u"a@example.com"_s << "new"_ba << 0;
        QTest::newRow("an account that says no address") << 200 << QString() << "new"_ba << 0;
        QTest::newRow("another account") << 200 << u"c@example.com"_s << "refresh-A"_ba << 1;
        // all that Google gave to that one would end as well
        QTest::newRow("another of ours") << 200 << u"b@example.com"_s << "refresh-A"_ba << 0;
        QTest::newRow("no tokens") << 503 << u"a@example.com"_s << "refresh-A"_ba << 0;
    }

    void aSignInAnewLeavesWhatIsGoodUntilItIsDone()
    {
        QFETCH(int, status);
        QFETCH(QString, chosen);
        QFETCH(QByteArray, left);
        Provider account;
        account.registry.add(account.google.account(u"B"_s));
        auto &transport = account.google.transport;
        transport.answer(u"/token"_s, status,
                         R"({"access_token":"access","refresh_token":"new","expires_in":3600})");
        transport.answer(u"/v1/userinfo"_s, chosen.isEmpty() ? 500 : 200,
                         "{\"email\":\"" + chosen.toUtf8() + "\"}");
        account.google.opener.onOpen = [](const QUrl &url) { comeBack(url, u"?code=a-code&state=STATE"_s); };

        const auto signedIn = QCoro::waitFor(account.provider->signInAgain(u"A"_s));

        QCOMPARE(signedIn.has_value(), left == "new");
        QCOMPARE(account.google.secrets.secrets.value(u"google.A.refresh_token"_s), left);
        QVERIFY(account.provider->oauth(u"A"_s).isSignedIn());
        QTEST(transport.requestsTo(u"/revoke"_s), "revocations");
        const auto token = QCoro::waitFor(account.provider->oauth(u"A"_s).accessToken());
        QCOMPARE(token, TokenRefresher::Result(left == "new" ? u"access"_s : u"token of A"_s));
    }

    void aRefusalOfTheOldTokenLeavesTheNewOne()
    {
        Provider account;
        auto &transport = account.google.transport;
        account.google.secrets.secrets.remove(u"google.A.access_token"_s);
        transport.hold();
        auto fetch = account.fetch({});
        FakeGoogle::settle();
        QCOMPARE(transport.requestsTo(u"/token"_s), 1);
        transport.holdNoMore();
        transport.answer(u"/token"_s, 200,
                         R"({"access_token":"access","refresh_token":"new","expires_in":3600})");
        transport.answer(u"/token"_s, 400, "invalid_grant");
        transport.answer(u"/v1/userinfo"_s, 200, R"({"email":"a@example.com"})");
        account.google.opener.onOpen = [](const QUrl &url) { comeBack(url, u"?code=a-code&state=STATE"_s); };
        auto signIn = account.provider->signInAgain(u"A"_s);
        QTRY_COMPARE(transport.requestsTo(u"/v1/userinfo"_s), 1);
        FakeGoogle::settle();

        transport.release();

        QVERIFY(QCoro::waitFor(signIn));
        QVERIFY(QCoro::waitFor(fetch));
        QCOMPARE(account.google.secrets.secrets.value(u"google.A.refresh_token"_s), "new");
        QVERIFY(account.google.secrets.secrets.contains(u"google.A.access_token"_s));
        QVERIFY(account.provider->oauth(u"A"_s).isSignedIn());
    }

    void signInEndsWithTheProvider()
    {
        Provider account;
        auto signIn = account.provider->signIn(); // nobody answers in the browser
        FakeGoogle::settle();
        QVERIFY(!signIn.isReady());
        account.provider.reset();
        QVERIFY(!QCoro::waitFor(signIn));
        QCOMPARE(account.registry.accounts().size(), 1);
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestGoogleProvider)
#include "TestGoogleProvider.moc"
