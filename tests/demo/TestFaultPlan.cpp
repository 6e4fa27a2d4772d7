#include "demo/FaultPlan.h"
#include <QTest>

using namespace Qt::StringLiterals;
using namespace kestrel::demo;

class TestFaultPlan final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTheCommandLine_data()
    {
        QTest::addColumn<QJsonObject>("json"); // empty: refused
        QTest::newRow("/token=status:503*2") << QJsonObject {
            { u"path"_s, u"/token"_s }, { u"fault"_s, u"status"_s }, { u"status"_s, 503 }, { u"times"_s, 2 }
        };
        QTest::newRow("/token=redirect:http://127.0.0.1:8/a*1")
            << QJsonObject { { u"path"_s, u"/token"_s },
                             { u"fault"_s, u"redirect"_s },
                             { u"times"_s, 1 },
                             { u"url"_s, u"http://127.0.0.1:8/a"_s } };
        for (const char *slip : { "/token", "token=close", "/token=mould", "/token=status:200",
                                  "/token=close:3", "/token=close*0", "/token=redirect:elsewhere" })
            QTest::newRow(slip) << QJsonObject();
    }

    void readsTheCommandLine()
    {
        QFETCH(QJsonObject, json);
        const auto fault = Fault::fromCommandLine(QString::fromLatin1(QTest::currentDataTag()));
        QCOMPARE(fault ? fault->toJson() : QJsonObject(), json);
        if (fault)
            QCOMPARE(Fault::fromJson(json).value().toJson(), json);
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
        QVERIFY(plan.take(u"/other"_s) && plan.take(u"/other"_s) && !plan.take(u"/other/one"_s));
    }
};

QTEST_GUILESS_MAIN(TestFaultPlan)
#include "TestFaultPlan.moc"
