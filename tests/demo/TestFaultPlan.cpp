#include "demo/FaultPlan.h"
#include <QTest>

using namespace Qt::StringLiterals;
using namespace kestrel::demo;

class TestFaultPlan final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTheCommandLineAsItsJson_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QJsonObject>("json");
        QTest::newRow("status, twice") << u"/token=status:503*2"_s
                                       << QJsonObject { { u"path"_s, u"/token"_s },
                                                        { u"fault"_s, u"status"_s },
                                                        { u"status"_s, 503 },
                                                        { u"times"_s, 2 } };
        QTest::newRow("any rest of a path") << u"/calendar*=slow:20"_s
                                            << QJsonObject { { u"path"_s, u"/calendar*"_s },
                                                             { u"fault"_s, u"slow"_s },
                                                             { u"milliseconds"_s, 20 } };
        QTest::newRow("standard argument") << u"/token=huge"_s
                                           << QJsonObject { { u"path"_s, u"/token"_s },
                                                            { u"fault"_s, u"huge"_s },
                                                            { u"bytes"_s, 50'000'000 } };
        QTest::newRow("an address with colons") << u"/token=redirect:http://127.0.0.1:8/a*1"_s
                                                << QJsonObject { { u"path"_s, u"/token"_s },
                                                                 { u"fault"_s, u"redirect"_s },
                                                                 { u"times"_s, 1 },
                                                                 { u"url"_s, u"http://127.0.0.1:8/a"_s } };
    }

    void readsTheCommandLineAsItsJson()
    {
        QFETCH(QString, text);
        const auto fault = Fault::fromCommandLine(text);
        QVERIFY2(fault, fault ? "" : qPrintable(fault.error()));
        QTEST(fault->toJson(), "json");
        const auto again = Fault::fromJson(fault->toJson());
        QVERIFY(again);
        QCOMPARE(again->toJson(), fault->toJson());
    }

    void refusesSlipsOfThePen_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("no kind") << u"/token"_s;
        QTest::newRow("no path") << u"token=close"_s;
        QTest::newRow("unknown kind") << u"/token=mould"_s;
        QTest::newRow("no status") << u"/token=status"_s;
        QTest::newRow("a status that is no error") << u"/token=status:200"_s;
        QTest::newRow("a status that is no number") << u"/token=status:many"_s;
        QTest::newRow("an argument too many") << u"/token=close:3"_s;
        QTest::newRow("no times") << u"/token=close*0"_s;
        QTest::newRow("nowhere to go") << u"/token=redirect:elsewhere"_s;
    }

    void refusesSlipsOfThePen()
    {
        QFETCH(QString, text);
        QVERIFY(!Fault::fromCommandLine(text));
    }

    void faultsOfOnePathGoOffInTheirOrder()
    {
        FaultPlan plan;
        for (const QString &text : { u"/token=status:503*2"_s, u"/other=close"_s, u"/tok*=status:401*1"_s })
            plan.add(Fault::fromCommandLine(text).value());
        QList<int> statuses;
        while (const auto fault = plan.take(u"/token"_s))
            statuses.append(fault->number);
        QCOMPARE(statuses, (QList { 503, 503, 401 }));
        QVERIFY(plan.take(u"/other"_s) && plan.take(u"/other"_s));
        QVERIFY(!plan.take(u"/other/one"_s));
    }
};

QTEST_GUILESS_MAIN(TestFaultPlan)
#include "TestFaultPlan.moc"
