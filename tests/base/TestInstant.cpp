#include "base/Instant.h"
#include <QTest>

using namespace kestrel;
using namespace Qt::StringLiterals;

class TestInstant : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void parsesInternetDateTimes_data()
    {
        QTest::addColumn<QString>("utc"); // empty: refused
        QTest::newRow("2024-02-29T00:00:00Z") << u"2024-02-29T00:00:00.000Z"_s;
        QTest::newRow("2025-03-01T22:30:00-03:30") << u"2025-03-02T02:00:00.000Z"_s;
        QTest::newRow("2025-03-01T09:30:00.25+02:00") << u"2025-03-01T07:30:00.250Z"_s;
        QTest::newRow("2025-03-01T09:30:00.123999999Z") << u"2025-03-01T09:30:00.123Z"_s;
        QTest::newRow("1969-12-31T23:59:59.5Z") << u"1969-12-31T23:59:59.500Z"_s;
        for (const char *refused :
             { "", "2025-03-01", "2025-03-01T09:30:00", "2025-03-01T09:30Z", "2025-03-01 09:30:00Z",
               "2025-3-1T09:30:00Z", "2025-02-30T09:30:00Z", "2025-03-01T24:00:00Z", "2025-03-01T09:60:00Z",
               "2025-03-01T09:30:60Z", "2025-03-01T09:30:00.Z", "2025-03-01T09:30:00+0200",
               "2025-03-01T09:30:00+24:00", "2025-03-01T09:30:00Zz", " 2025-03-01T09:30:00Z",
               "2025-W09-6T09:30:00Z", "-025-03-01T09:30:00Z", "٢٠٢٥-03-01T09:30:00Z" })
            QTest::newRow(refused) << QString();
    }

    void parsesInternetDateTimes()
    {
        const auto instant = parseInternetDateTime(QString::fromUtf8(QTest::currentDataTag()));
        QTEST(instant ? toInternetDateTimeWithMilliseconds(*instant) : QString(), "utc");
    }

    void roundsToWholeSecondsTowardsThePast()
    {
        QCOMPARE(toInternetDateTime(*parseInternetDateTime(u"1969-12-31T23:59:58.9Z")),
                 u"1969-12-31T23:59:58Z"_s);
    }
};

QTEST_GUILESS_MAIN(TestInstant)
#include "TestInstant.moc"
