#include "base/StartTask.h"
#include "platform/linux/DBusSessionInstance.h"
#include <QCoro/QCoroTask>
#include <QProcess>
#include <QTest>

using namespace kestrel;
using namespace Qt::StringLiterals;

namespace {

const auto busName = u"app.kestrel.Kestrel.test"_s;

QCoro::Task<VerbResult> echo(QStringList arguments)
{
    co_return VerbResult { static_cast<int>(arguments.size()), arguments.join(u'+'), u"warned"_s };
}

} // namespace

/// Runs on a private bus (dbus-run-session). The second instance is this very program, started again.
class TestDBusSessionInstance : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    /// Without patience: for a verb that takes long, a Kestrel is asked whether it is one.
    void handsAVerbOverToWhoeverHasTheName()
    {
        DBusSessionInstance instance(busName);
        QVERIFY(instance.claim(echo) == SessionInstance::Claim::Owned);

        QProcess second;
        second.start(QCoreApplication::applicationFilePath(), { u"--second"_s, u"agenda"_s, u"--json"_s });
        QTRY_COMPARE_WITH_TIMEOUT(second.state(), QProcess::NotRunning, 30000);

        QCOMPARE(second.readAllStandardOutput(), "taken 2 agenda+--json warned");
    }
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.value(0) == "--second"_L1) {
        DBusSessionInstance instance(busName, { std::chrono::milliseconds(0) });
        const bool isTaken = instance.claim(echo) == SessionInstance::Claim::Taken;
        const auto result = QCoro::waitFor(instance.handOver(arguments.mid(1)));
        if (result)
            std::printf("%s %d %s %s", isTaken ? "taken" : "owned", result->exitCode,
                        qPrintable(result->output), qPrintable(result->errors));
        return 0;
    }
    TestDBusSessionInstance test;
    return QTest::qExec(&test, argc, argv);
}

#include "TestDBusSessionInstance.moc"
