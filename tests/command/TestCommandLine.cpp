#include "command/CommandLine.h"
#include <QTest>

using namespace kestrel;
using namespace Qt::StringLiterals;

class TestCommandLine : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        qunsetenv("KESTREL_DATA");
        qunsetenv("KESTREL_GOOGLE_BASE");
    }

    void acceptsWhatAVerbTakes_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<bool>("accepted");

        const auto row = [](const char *call, bool accepted) {
            QTest::addRow("%s", call) << QString::fromLatin1(call) << accepted;
        };
        row("", true);
        row("agenda --json", true);
        row("refresh --json", false);
        row("accounts", false);
        row("accounts add", true);
        row("accounts remove", false);
        row("accounts sign-in", false);
        row("accounts sign-in A", true);
        row("accounts remove A", true);
        row("browser", false);
        row("browser install", true);
        row("browser install --json", false);
        row("browser status --json", true);
        row("browser remove", false);
        row("meetings", false);
        row("meetings saved.json --now 2026-03-01T09:30:00Z --account A --calendar C --json", true);
        row("agenda --now 2026-03-01T09:30:00Z", false);
        row("meetings saved.json --now", false);
        row("--json", false);
        row("--secret-store file", true);
        row("--secret-store cloud", false);
        row("agenda --colour", false);
        row("doctor --json --test-alert", true);
        row("status --test-alert", false);
        row("action", false);
        row("action meetMute", true);
        row("action meetmute", false);
    }

    void acceptsWhatAVerbTakes()
    {
        QFETCH(QString, call);
        QFETCH(bool, accepted);

        const auto line = CommandLine::parse(u"kestrel "_s.append(call).split(u' ', Qt::SkipEmptyParts));

        QCOMPARE(line.has_value(), accepted);
        if (!accepted)
            QVERIFY(!line.error().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestCommandLine)
#include "TestCommandLine.moc"
