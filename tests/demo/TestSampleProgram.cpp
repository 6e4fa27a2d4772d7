#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;

/// The program as its parents see it: the one line, and how it ends.
class TestSampleProgram final : public QObject
{
    Q_OBJECT

    static QString program(const QString &name) { return qEnvironmentVariable("KESTREL_BIN") + u'/' + name; }

    /// Starts the server and waits for its line.
    static void start(QProcess &process, const QStringList &options)
    {
        process.start(program(u"kestrel-sample-google"_s), options);
        QTRY_VERIFY_WITH_TIMEOUT(process.canReadLine() || process.state() == QProcess::NotRunning, 30'000);
    }

private Q_SLOTS:
    void saysWhereItListensAndEndsInGoodOrder_data()
    {
        QTest::addColumn<bool>("isEndedByStdin");
        QTest::newRow("SIGTERM") << false;
        QTest::newRow("standard input closes") << true;
    }

    void saysWhereItListensAndEndsInGoodOrder()
    {
        QFETCH(bool, isEndedByStdin);
        QProcess process;
        start(process, isEndedByStdin ? QStringList { u"--until-stdin-closes"_s } : QStringList());
        const QByteArray line = process.readLine();
        QVERIFY2(line.startsWith("http://127.0.0.1:") && line.endsWith('\n'), line.constData());

        if (isEndedByStdin)
            process.closeWriteChannel();
        else
            process.terminate();
        QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 30'000);
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(process.readAll(), QByteArray());
    }

    void refusesWhatItCannotDo_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("code");
        const QString server = u"kestrel-sample-google"_s;
        const QString consent = u"kestrel-sample-consent"_s;
        QTest::newRow("a port that is none") << server << QStringList { u"--port=65536"_s } << 2;
        QTest::newRow("an instant without a zone")
            << server << QStringList { u"--now=2030-01-15T09:00:00"_s } << 2;
        QTest::newRow("an unknown fault") << server << QStringList { u"--fault=/token=mould"_s } << 2;
        QTest::newRow("a stray word") << server << QStringList { u"fast"_s } << 2;
        QTest::newRow("no page") << consent << QStringList() << 2;
        // links of meetings come to the same program
        QTest::newRow("a meeting's link")
            << consent << QStringList { u"https://example.zoom.us/j/1234567890"_s } << 1;
        QTest::newRow("a name that only looks like loopback")
            << consent << QStringList { u"http://127.0.0.1.example.com/"_s } << 1;
        QTest::newRow("nobody there")
            << server << QStringList { u"press-consent"_s, u"http://127.0.0.1:1/"_s } << 1;
    }

    void refusesWhatItCannotDo()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, arguments);
        QProcess process;
        process.start(program(name), arguments);
        QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 30'000);
        QTEST(process.exitCode(), "code");
        QCOMPARE(process.readAllStandardOutput(), QByteArray());
        QVERIFY(!process.readAllStandardError().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSampleProgram)
#include "TestSampleProgram.moc"
