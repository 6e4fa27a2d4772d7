#include "helper/HelperSession.h"
#include "helper/PlayedRelay.h"
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QJsonArray>
#include <QRegularExpression>
#include <QTest>
#include <csignal>

using namespace Qt::StringLiterals;
using namespace kestrel;

namespace {

const auto address = u"https://meet.google.com/abc-defg-hij?authuser=ann%40example.com&x=$(y)"_s;

/// A program that writes down its process, its session and its arguments, one a line, and ends with
/// `exitCode`; without one it stays.
QString playBrowser(Session &session, const QString &exitCode)
{
    const QString program = session.folder.filePath(u"a browser"_s);
    session.write(
        program,
        u"#!/bin/sh\n{ echo $$; cut -d' ' -f6 /proc/$$/stat; printf '%s\\n' \"$@\"; } > '%1.new'\n"
        "mv '%1.new' '%1'\n%2\n"_s.arg(session.folder.filePath(u"started"_s),
                                       exitCode.isEmpty() ? u"exec sleep 60"_s : u"exit "_s + exitCode));
    QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return program;
}

QStringList written(const Session &session)
{
    QFile file(session.folder.filePath(u"started"_s));
    file.open(QIODevice::ReadOnly);
    return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

/// The session's systemd, which moves a process into a scope when it is asked to.
class PlayedSystemd final : public QDBusVirtualObject
{
public:
    explicit PlayedSystemd(Session &session)
        : m_session(session)
        , m_bus(session.bus.connection())
    {
        m_bus.registerVirtualObject(u"/org/freedesktop/systemd1"_s, this);
        m_bus.registerService(u"org.freedesktop.systemd1"_s);
    }

    [[nodiscard]] QString introspect(const QString & /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        isInTime = written(m_session).isEmpty();
        signature = message.signature();
        unit = message.arguments().value(0).toString();
        return connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(u"/job"_s))));
    }

    bool isInTime = false; ///< before the program was run
    QString signature;
    QString unit;

private:
    Session &m_session;
    QDBusConnection m_bus;
};

} // namespace

/// Windows by played browsers; TestOwnProfile has a real one.
class TestAppModeWindows final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void refuses_data()
    {
        QTest::addColumn<QString>("desktopFile");
        QTest::addColumn<QString>("url");
        QTest::addColumn<int>("width");
        QTest::addColumn<QString>("error");
        const auto onlyHttps = u"Only https addresses are opened"_s;
        QTest::newRow("http") << QString() << u"http://meet.google.com/x"_s << 800 << onlyHttps;
        QTest::newRow("an option") << QString() << u"--gpu-launcher=x"_s << 800 << onlyHttps;
        QTest::newRow("no address") << QString() << u"https://"_s << 800 << onlyHttps;
        QTest::newRow("no width") << QString() << address << 0 << u"A window cannot be 0 by 360 large"_s;
        QTest::newRow("too wide") << QString() << address << 16385
                                  << u"A window cannot be 16385 by 360 large"_s;
        QTest::newRow("another program")
            << u"/usr/share/applications/xterm.desktop"_s << address << 800
            << u"Not an installed browser that Kestrel knows: /usr/share/applications/xterm.desktop"_s;
        QTest::newRow("another place")
            << u"/tmp/chromium.desktop"_s << address << 800
            << u"Not an installed browser that Kestrel knows: /tmp/chromium.desktop"_s;
    }
    void refuses()
    {
        QFETCH(QString, desktopFile);
        QFETCH(QString, url);
        QFETCH(int, width);
        Session session;
        session.installBrowser(u"\"%1\" %U"_s.arg(playBrowser(session, u"0"_s)));

        const auto reply = started(session.channel.openInChromeAppMode(
            desktopFile.isEmpty() ? session.desktopFile() : desktopFile, url, width, 360));
        QVERIFY(hasCome(reply));
        QTEST(describe(**reply), "error");
        QVERIFY(written(session).isEmpty());
    }

    void startsTheBrowserApartFromItself()
    {
        Session session;
        PlayedSystemd systemd(session);
        session.installBrowser(
            u"env A=b \"%1\" \"--name=100%% \\\\$x\" --icon %i %U @@u @@"_s.arg(playBrowser(session, {})));

        const auto reply =
            started(session.channel.openInChromeAppMode(session.desktopFile(), address, 1000, 360));
        QVERIFY(hasCome(reply));
        QCOMPARE(describe(**reply), u"ok"_s);
        const QStringList lines = written(session);
        QCOMPARE(lines.mid(2),
                 (QStringList { u"--name=100% $x"_s, u"--icon"_s, u"--app="_s + address,
                                u"--window-size=1000,360"_s }));
        QCOMPARE(lines[0], lines[1]); // it leads a session
        QCOMPARE(systemd.signature, u"ssa(sv)a(sa(sv))"_s);
        QCOMPARE(systemd.unit, u"app-kestrel-%1.scope"_s.arg(lines[0]));
        QVERIFY(systemd.isInTime);
        ::kill(static_cast<pid_t>(session.helperPid()), SIGKILL);
        QTRY_VERIFY_WITH_TIMEOUT(!session.isHelperThere(), 30000);
        QCOMPARE(::kill(lines[0].toInt(), SIGKILL), 0); // and was there still
    }

    void tellsThatTheBrowserDidNotRun_data()
    {
        QTest::addColumn<QString>("exec");
        QTest::addColumn<QString>("error");
        QTest::newRow("fails") << u"\"%1\""_s << u"%1 ended at once with exit code 3"_s;
        QTest::newRow("is missing") << u"/nowhere/browser"_s << u"There is no program /nowhere/browser"_s;
        QTest::newRow("open quote") << u"\"%1"_s << u"%2: A quote in Exec is not closed: \"%1"_s;
        QTest::newRow("unknown code")
            << u"\"%1\" %y"_s << u"%2: Exec holds an unknown field code: \"%1\" %y"_s;
    }
    void tellsThatTheBrowserDidNotRun()
    {
        QFETCH(QString, exec);
        QFETCH(QString, error);
        Session session;
        const QString program = playBrowser(session, u"3"_s);
        session.installBrowser(exec.replace(u"%1"_s, program));

        const auto reply =
            started(session.channel.openInChromeAppMode(session.desktopFile(), address, 800, 360));
        QVERIFY(hasCome(reply));
        QCOMPARE(describe(**reply), error.replace(u"%1"_s, program).replace(u"%2"_s, session.desktopFile()));
    }

    void givesUpABrowserOfKestrelsOwnThatOpensNothing_data()
    {
        QTest::addColumn<bool>("isRunning");
        QTest::addColumn<bool>("answers");
        QTest::addColumn<QString>("exec");
        QTest::addColumn<QString>("error"); // a pattern
        const auto silent = u"The browser with Kestrel's own profile (did not start|does not answer)"_s;
        QTest::newRow("ends at once") << false << false << u"/bin/false"_s
                                      << u"The browser (went before it answered|with .* did not start)"_s;
        QTest::newRow("knows no DevTools") << false << false << QString() << silent;
        QTest::newRow("hangs") << true << false << QString() << silent;
        QTest::newRow("opens nothing") << true << true << u"/bin/true"_s << silent;
        QTest::newRow("cannot be told")
            << true << true << u"/bin/false"_s << u"/bin/false ended at once with exit code 1"_s;
    }
    void givesUpABrowserOfKestrelsOwnThatOpensNothing()
    {
        QFETCH(bool, isRunning);
        QFETCH(bool, answers);
        QFETCH(QString, exec);
        QFETCH(QString, error);
        Session session({}, { u"--patience"_s, exec == "/bin/false"_L1 ? u"30"_s : u"1"_s });
        session.write(session.preferences(), u"browserProfile=kestrel\n"_s);
        session.installBrowser(exec.isEmpty() ? u"\"%1\" %U"_s.arg(playBrowser(session, {})) : exec);
        std::unique_ptr<PlayedRelay> running;
        if (isRunning) {
            running = std::make_unique<PlayedRelay>(
                session.sockets(), 1, [answers](const QJsonObject &) -> std::optional<QJsonObject> {
                    const QJsonObject none { { u"targetInfos"_s, QJsonArray() } };
                    return answers ? std::optional(QJsonObject { { u"result"_s, none } }) : std::nullopt;
                });
            running->greeting =
                PlayedRelay::frame({ { u"relay"_s, 1 },
                                     { u"route"_s, u"devtools"_s },
                                     { u"userDataDir"_s, session.folder.filePath(u"profile"_s) } });
        }
        for (int call = 0; call < 2; ++call) { // and the next one does not wait for the one before
            const auto reply =
                started(session.channel.openInChromeAppMode(session.desktopFile(), address, 800, 360));
            QVERIFY(hasCome(reply));
            QVERIFY2(QRegularExpression(u"^%1$"_s.arg(error)).match(describe(**reply)).hasMatch(),
                     qPrintable(describe(**reply)));
        }
        for (const QString &line : written(session).mid(0, 1))
            ::kill(line.toInt(), SIGKILL);
    }

    void asksTheBrowsersOwnExtensionFirst_data()
    {
        QTest::addColumn<QString>("dataFolder"); // below the session's
        QTest::addColumn<QJsonObject>("answer");
        QTest::addColumn<bool>("isStarted");
        const QJsonObject opened { { u"opened"_s, true } };
        QTest::newRow("it opens") << u"config/chromium"_s << opened << false;
        QTest::newRow("it cannot") << u"config/chromium"_s << QJsonObject { { u"error"_s, u"no"_s } } << true;
        QTest::newRow("another browser's") << u"config/google-chrome"_s << opened << true;
    }
    void asksTheBrowsersOwnExtensionFirst()
    {
        QFETCH(QString, dataFolder);
        QFETCH(QJsonObject, answer);
        QFETCH(bool, isStarted);
        Session session;
        session.installBrowser(u"\"%1\" %U"_s.arg(playBrowser(session, u"0"_s)));
        PlayedRelay relay(session.sockets(), 1, [&](const QJsonObject &) { return answer; });
        relay.greeting = PlayedRelay::frame({ { u"relay"_s, 1 },
                                              { u"route"_s, u"extension"_s },
                                              { u"userDataDir"_s, session.folder.filePath(dataFolder) } });

        const auto reply =
            started(session.channel.openInChromeAppMode(session.desktopFile(), address, 1000, 360));
        QVERIFY(hasCome(reply));
        QCOMPARE(describe(**reply), u"ok"_s);
        QCOMPARE(!written(session).isEmpty(), isStarted);
        if (qstrcmp(QTest::currentDataTag(), "another browser's") == 0) {
            QVERIFY(relay.requests.isEmpty());
            return;
        }
        QCOMPARE(relay.requests.first()["url"_L1].toString(), address);
        QCOMPARE(relay.requests.first()["width"_L1].toInt(), 1000);
        QCOMPARE(relay.requests.first()["height"_L1].toInt(), 360);
    }
};

QTEST_GUILESS_MAIN(TestAppModeWindows)
#include "TestAppModeWindows.moc"
