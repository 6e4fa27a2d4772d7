#include "base/Clock.h"
#include "platform/linux/AbsoluteWakeTimer.h"
#include <QSignalSpy>
#include <QTest>

using namespace kestrel;
using namespace std::chrono_literals;

class TestAbsoluteWakeTimer final : public QObject
{
    Q_OBJECT

    static Instant now() { return SystemClock().now(); }

private Q_SLOTS:
    void firesOnceAndNeverEarly_data()
    {
        QTest::addColumn<Instant>("due");
        QTest::newRow("soon") << now() + 50ms;
        QTest::newRow("past") << now() - 1h;
        QTest::newRow("the epoch, which would disarm a timerfd") << Instant();
        QTest::newRow("before the epoch") << Instant(-1h);
    }

    void firesOnceAndNeverEarly()
    {
        QFETCH(Instant, due);
        AbsoluteWakeTimer timer;
        QSignalSpy fired(&timer, &WakeTimer::fired);
        std::optional<Instant> firedAt;
        connect(&timer, &WakeTimer::fired, this, [&] { firedAt = now(); });
        timer.arm(due);
        QVERIFY2(fired.isEmpty(), "inside arm()");
        QVERIFY(fired.wait());
        QVERIFY(*firedAt >= due);
        QTest::qWait(20);
        QCOMPARE(fired.size(), 1);
    }

    void tellsWhatTheKernelHas()
    {
        AbsoluteWakeTimer timer;
        QVERIFY2(!timer.armedFor(), "it waits for a far future only to hear of a set clock");
        const Instant due = now() + 1h;
        timer.arm(due);
        QVERIFY(timer.armedFor() == due);
        timer.arm(now() - 1s);
        QVERIFY2(!timer.armedFor(), "it has gone off already");
        timer.arm(due);
        timer.cancel();
        QVERIFY(!timer.armedFor());
    }

    void whatIsArmedLastCounts()
    {
        AbsoluteWakeTimer timer;
        QSignalSpy fired(&timer, &WakeTimer::fired);
        timer.arm(now() - 1s); // due already, and taken back before the event loop sees it
        timer.cancel();
        QTest::qWait(20);
        QCOMPARE(fired.size(), 0);

        timer.arm(now() - 1s);
        timer.arm(Instant::max()); // beyond what the kernel counts
        QTest::qWait(20);
        QCOMPARE(fired.size(), 0);

        connect(&timer, &WakeTimer::fired, this, [&] {
            if (fired.size() < 3)
                timer.arm(now() + 1ms);
        });
        timer.arm(now() + 1ms);
        QTRY_COMPARE(fired.size(), 3);
    }
};

QTEST_GUILESS_MAIN(TestAbsoluteWakeTimer)
#include "TestAbsoluteWakeTimer.moc"
