#include "model/EventStore.h"
#include "support/MakeMeeting.h"
#include <QTest>
#include <algorithm>
#include <ctime>
#include <random>

using namespace Qt::StringLiterals;
using namespace std::chrono;

namespace kestrel {

namespace {

Instant at(QStringView text)
{
    return parseInternetDateTime(text).value();
}

/// On 1 March 2025, at minutes past 9:00 UTC.
Meeting meetingAt(const QString &id, int start, int end, const QString &accountID = u"a"_s)
{
    const Instant nine = at(u"2025-03-01T09:00:00Z");
    return makeMeeting(id, nine + minutes(start), nine + minutes(end), accountID);
}

QStringList ids(const QList<Meeting> &meetings)
{
    QStringList ids;
    for (const Meeting &meeting : meetings)
        ids << meeting.id;
    return ids;
}

} // namespace

class TestEventStore final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { m_clock.setNow(at(u"2025-03-01T09:00:00Z")); }

    void mergesLikeAStableSort()
    {
        std::mt19937 random(4);
        EventStore store(m_clock);
        QList<Meeting> expected;
        for (int round = 0; round < 60; ++round) {
            const QString account = QString::number(random() % 4);
            QList<Meeting> added;
            for (unsigned i = 0, count = random() % 20; i < count; ++i) {
                const int start = int(random() % 12);
                added << meetingAt(u"%1/%2"_s.arg(round).arg(i), start, start + int(random() % 20) - 5,
                                   account);
                added.last().isCancelled = random() % 8 == 0;
            }
            m_clock.setNow(m_clock.now() + minutes(random() % 3));
            store.replace(account, added);

            expected.removeIf([&](const Meeting &m) { return m.accountID == account; });
            expected << added;
            expected.removeIf(
                [&](const Meeting &m) { return m.isCancelled || m.end <= m_clock.now() - hours(1); });
            std::stable_sort(expected.begin(), expected.end(),
                             [](const Meeting &a, const Meeting &b) { return a.start < b.start; });
            QCOMPARE(ids(store.upcoming()), ids(expected));
        }
        QVERIFY(!expected.isEmpty());
        store.removeMeetings(u"2"_s);
        expected.removeIf([&](const Meeting &m) { return m.accountID == u"2"; });
        QVERIFY(!expected.isEmpty());
        QCOMPARE(ids(store.upcoming()), ids(expected));
    }

    void knowsTheDayInTheUsersZone_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QString>("now");
        QTest::addColumn<QString>("start");
        QTest::addColumn<bool>("isToday");
        const auto row = [](const char *name, const char *zone, const QString &now, const QString &start,
                            bool isToday) {
            QTest::newRow(name) << QByteArray(zone) << now << start << isToday;
        };
        row("over already", "UTC", u"2025-03-01T15:00:00Z"_s, u"2025-03-01T14:10:00Z"_s, true);
        row("at the next midnight", "UTC", u"2025-03-01T15:00:00Z"_s, u"2025-03-02T00:00:00Z"_s, false);
        row("the zone's day, not UTC's", "Asia/Tokyo", u"2025-03-01T15:30:00Z"_s, u"2025-03-02T14:59:00Z"_s,
            true);
        // Madrid: 30 March 2025 has 23 hours, 26 October 25
        row("first minute after a short day", "Europe/Madrid", u"2025-03-30T10:00:00Z"_s,
            u"2025-03-30T22:00:00Z"_s, false);
        row("first minute after a long day", "Europe/Madrid", u"2025-10-26T10:00:00Z"_s,
            u"2025-10-26T23:00:00Z"_s, false);
        // Beirut's summer time begins at midnight: 30 March 2025 begins at 01:00
        // Apia left out 30 December 2011
        row("the day before a day that never was", "Pacific/Apia", u"2011-12-30T09:00:00Z"_s,
            u"2011-12-30T09:30:00Z"_s, true);
    }

    void knowsTheDayInTheUsersZone()
    {
        QFETCH(const QByteArray, zone);
        QFETCH(const QString, now);
        QFETCH(const QString, start);
        const QByteArray before = qgetenv("TZ");
        const auto restore = qScopeGuard([&] {
            qputenv("TZ", before);
            tzset();
        });
        qputenv("TZ", zone);
        tzset();

        m_clock.setNow(std::min(at(now), at(start)));
        EventStore store(m_clock);
        store.replace(u"a"_s, { makeMeeting(u"m"_s, at(start), at(start) + minutes(10)) });
        QCOMPARE(store.upcoming().size(), 1);
        m_clock.setNow(at(now));
        QTEST(!store.today().isEmpty(), "isToday");
    }

private:
    FixedClock m_clock { at(u"2025-03-01T09:00:00Z") };
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestEventStore)
#include "TestEventStore.moc"
