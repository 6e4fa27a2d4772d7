#include "app/AppEnvironment.h"
#include "support/FakeDesktop.h"
#include "support/FakeGoogle.h"
#include <QSignalSpy>
#include <QTest>
#include <QUrlQuery>
#include <algorithm>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

/// An environment whose accounts each read one calendar of their own, named "<account>@example.com".
struct Desktop
{
    FakeGoogle google;
    FakeDesktop screen;
    std::unique_ptr<AppEnvironment> environment;

    explicit Desktop(const QStringList &accountIDs)
    {
        AccountRegistry registry(google.preferences);
        Preferences preferences(google.preferences);
        for (const QString &id : accountIDs) {
            registry.add(google.account(id));
            preferences.setSelectedCalendarIDs({ calendarOf(id) }, id);
        }
    }
    ~Desktop() { google.finish(); }

    void start()
    {
        environment =
            std::make_unique<AppEnvironment>(google.preferences, google.services(), screen.services());
    }

    /// The start, and the two refreshes that belong to it.
    void startAndSettle()
    {
        start();
        FakeGoogle::settle();
        google.transport.requests.clear();
    }

    /// One meeting, "e", for each account.
    void answerAll()
    {
        for (int i = 0; const QString &id : { u"A"_s, u"B"_s })
            answer(id, { { u"e"_s, std::chrono::minutes(10 * ++i) } });
    }

    void answer(const QString &accountID, const QList<FakeGoogle::Event> &events)
    {
        google.answerEvents(calendarOf(accountID), events);
    }

    void refresh() { QCoro::waitFor(environment->refresh()); }

    /// Identifiers of the stored meetings.
    [[nodiscard]] QStringList meetings() const
    {
        QStringList ids;
        for (const Meeting &meeting : environment->store().upcoming())
            ids.append(meeting.id);
        return ids;
    }

    [[nodiscard]] int requestsFor(const QString &accountID) const
    {
        return google.transport.requestsTo(pathOf(accountID));
    }

    [[nodiscard]] static QString calendarOf(const QString &accountID)
    {
        return accountID.toLower() + u"@example.com"_s;
    }
    [[nodiscard]] static QString pathOf(const QString &accountID)
    {
        return FakeGoogle::eventsPath(calendarOf(accountID));
    }
};

} // namespace

class TestAppEnvironment : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void withoutAccountsTheStoreIsEmptiedAtOnce()
    {
        Desktop desktop({});
        desktop.startAndSettle();
        AppEnvironment &environment = *desktop.environment;
        const QSignalSpy refreshing(&environment, &AppEnvironment::isRefreshingChanged);
        Meeting leftOver;
        leftOver.accountID = u"A"_s;
        leftOver.start = leftOver.end = desktop.google.clock.now() + 1h;
        environment.store().replace(u"A"_s, { leftOver });
        desktop.google.clock.setNow(desktop.google.clock.now() + 1min);

        desktop.refresh();
        QVERIFY(desktop.meetings().isEmpty());
        QCOMPARE(environment.lastRefresh(), desktop.google.clock.now());
        QCOMPARE(refreshing.count(), 0);
    }

    void startRefreshesTwice()
    {
        Desktop desktop({ u"A"_s });
        desktop.answer(u"A"_s, { { u"e"_s } });
        desktop.google.transport.hold();
        desktop.start();
        QVERIFY(!desktop.environment->isRefreshing());
        FakeGoogle::settle();
        QCOMPARE(desktop.requestsFor(u"A"_s), 2);
        const QUrlQuery query(desktop.google.transport.requests.last().url); // an hour back, a day ahead
        QCOMPARE(query.queryItemValue(u"timeMin"_s), u"2025-03-03T11:00:00Z"_s);
        QCOMPARE(query.queryItemValue(u"timeMax"_s), u"2025-03-04T12:00:00Z"_s);
        QVERIFY(desktop.environment->isRefreshing());
        QVERIFY(!desktop.environment->lastRefresh());

        desktop.google.finish();
        QVERIFY(!desktop.environment->isRefreshing());
        QCOMPARE(desktop.environment->lastRefresh(), desktop.google.clock.now());
        QCOMPARE(desktop.meetings(), QStringList { u"A:e"_s });
    }

    void timerRefreshesEveryMinute()
    {
        Desktop desktop({ u"A"_s });
        desktop.startAndSettle();
        auto *timer = desktop.environment->findChild<QTimer *>();
        QVERIFY(timer && timer->isActive());
        QCOMPARE(timer->intervalAsDuration(), 60s);
        timer->setInterval(0); // a minute, quickly
        QTRY_VERIFY(desktop.requestsFor(u"A"_s) >= 3);
        timer->stop();
    }

    void accountThatFailsLosesItsMeetings()
    {
        Desktop desktop({ u"A"_s, u"B"_s });
        desktop.answerAll();
        desktop.startAndSettle();
        QCOMPARE(desktop.meetings(), (QStringList { u"A:e"_s, u"B:e"_s }));

        desktop.google.transport.answer(Desktop::pathOf(u"B"_s), 500, "down");
        desktop.refresh(); // the script's last good answer
        desktop.refresh();
        QCOMPARE(desktop.meetings(), QStringList { u"A:e"_s });
        desktop.answer(u"B"_s, { { u"f"_s, 20min } });
        desktop.refresh();
        desktop.refresh();
        QCOMPARE(desktop.meetings(), (QStringList { u"A:e"_s, u"B:f"_s }));
    }

    void resultsAreStoredAsTheyCome()
    {
        Desktop desktop({ u"A"_s, u"B"_s });
        desktop.answerAll();
        desktop.google.transport.hold();
        desktop.start();
        FakeGoogle::settle();
        desktop.google.transport.release(Desktop::pathOf(u"B"_s));
        FakeGoogle::settle();
        QCOMPARE(desktop.meetings(), QStringList { u"B:e"_s });
        QVERIFY(desktop.environment->isRefreshing());
        QVERIFY(!desktop.environment->lastRefresh());
    }

    void removedAccountLosesItsMeetingsAndSelectionAtOnce()
    {
        Desktop desktop({ u"A"_s, u"B"_s });
        desktop.answerAll();
        desktop.startAndSettle();
        desktop.google.transport.hold();
        desktop.environment->registry().remove(u"A"_s);
        FakeGoogle::settle();
        QCOMPARE(desktop.meetings(), QStringList { u"B:e"_s });
        QVERIFY(desktop.environment->preferences().selectedCalendarIDs(u"A"_s).isEmpty());
        QVERIFY(!desktop.environment->preferences().selectedCalendarIDs(u"B"_s).isEmpty());
        QCOMPARE(desktop.requestsFor(u"B"_s), 1); // the change refreshed what is left
        QCOMPARE(desktop.requestsFor(u"A"_s), 0);
    }

    void firstOfOverlappingRefreshesEndsTheRefreshing()
    {
        Desktop desktop({ u"A"_s });
        desktop.answer(u"A"_s, { { u"old"_s } });
        desktop.google.answerEvents(u"other"_s, { { u"new"_s } });
        desktop.startAndSettle();
        AppEnvironment &environment = *desktop.environment;
        desktop.google.transport.hold();
        auto first = environment.refresh();
        environment.preferences().setSelectedCalendarIDs({ u"other"_s }, u"A"_s);
        auto second = environment.refresh();
        FakeGoogle::settle();
        QVERIFY(environment.isRefreshing());

        desktop.google.transport.release(FakeGoogle::eventsPath(u"other"_s));
        QCoro::waitFor(second);
        QVERIFY(!environment.isRefreshing());
        QVERIFY(!first.isReady());
        QCOMPARE(desktop.meetings(), QStringList { u"A:new"_s });

        // what arrives last stays, even from the older one
        desktop.google.transport.release();
        QCoro::waitFor(first);
        QVERIFY(!environment.isRefreshing());
        QCOMPARE(desktop.meetings(), QStringList { u"A:old"_s });
    }

    void signOutDuringARefreshLeavesNoMeetings()
    {
        Desktop desktop({ u"A"_s, u"B"_s });
        desktop.answerAll();
        desktop.startAndSettle();
        desktop.google.transport.hold();
        auto refresh = desktop.environment->refresh();
        auto signOut = desktop.environment->google().signOut(u"A"_s);
        FakeGoogle::settle();
        desktop.google.transport.release(u"/revoke"_s);
        QVERIFY(QCoro::waitFor(signOut));
        QTest::ignoreMessage(QtCriticalMsg, "Refresh A failed: The account was signed out");
        desktop.google.transport.release();
        QCoro::waitFor(refresh);
        FakeGoogle::settle();
        QCOMPARE(desktop.meetings(), QStringList { u"B:e"_s });
    }

    void refreshesPileUpToOneWhileOffline()
    {
        const QStringList accounts { u"A"_s, u"B"_s, u"C"_s };
        Desktop desktop(accounts);
        for (const QString &id : accounts) {
            desktop.answer(id, { { u"known"_s } });
            desktop.answer(id, { { u"known"_s } });
            desktop.answer(id, { { u"fresh"_s } });
        }
        desktop.startAndSettle(); // takes the first two answers
        AppEnvironment &environment = *desktop.environment;
        const QStringList known { u"A:known"_s, u"B:known"_s, u"C:known"_s };
        QCOMPARE(desktop.meetings(), known);
        const auto lastRefresh = environment.lastRefresh();
        const auto calls = desktop.google.secrets.calls;

        desktop.google.transport.setOnline(false);
        desktop.google.clock.setNow(desktop.google.clock.now() + 1min);
        std::vector<QCoro::Task<void>> refreshes;
        for (int minute = 0; minute < 100; ++minute) {
            refreshes.push_back(environment.refresh());
            if (minute % 2 == 0) // some come in one turn of the event loop
                FakeGoogle::settle();
            QVERIFY(desktop.google.transport.waiting <= accounts.size());
        }
        FakeGoogle::settle();
        const auto isReady = [](const auto &refresh) { return refresh.isReady(); };
        QCOMPARE(std::count_if(refreshes.begin(), refreshes.end(), isReady), 99);
        QCOMPARE(desktop.meetings(), known);
        QCOMPARE(environment.lastRefresh(), lastRefresh);
        QCOMPARE(desktop.google.secrets.calls, calls);

        desktop.google.transport.setOnline(true);
        QCoro::waitFor(refreshes.back());
        for (const QString &id : accounts)
            QCOMPARE(desktop.requestsFor(id), 1);
        QCOMPARE(desktop.meetings(), (QStringList { u"A:fresh"_s, u"B:fresh"_s, u"C:fresh"_s }));
        QCOMPARE(environment.lastRefresh(), desktop.google.clock.now());
        QVERIFY(!environment.isRefreshing());
    }

    void openedSecretStoreBringsTheAccountsToLife()
    {
        Desktop desktop({ u"A"_s, u"B"_s });
        desktop.answerAll();
        desktop.google.secrets.lock();
        desktop.startAndSettle();
        QVERIFY(desktop.meetings().isEmpty());

        desktop.google.secrets.unlock();
        FakeGoogle::settle();
        QCOMPARE(desktop.meetings(), (QStringList { u"A:e"_s, u"B:e"_s }));
        QCOMPARE(desktop.requestsFor(u"A"_s), 1);
        QCOMPARE(desktop.requestsFor(u"B"_s), 1);
    }

    void environmentMayGoDuringARefresh()
    {
        Desktop desktop({ u"A"_s, u"B"_s });
        desktop.answer(u"A"_s, { { u"e"_s } });
        desktop.google.transport.hold();
        desktop.start();
        FakeGoogle::settle();
        auto refresh = desktop.environment->refresh();
        desktop.google.transport.release(
            Desktop::pathOf(u"A"_s)); // one account's answer is there, one is awaited
        desktop.environment.reset();
        desktop.google.transport.release();
        QCoro::waitFor(refresh);
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestAppEnvironment)
#include "TestAppEnvironment.moc"
