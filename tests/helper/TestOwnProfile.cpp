#include "helper/HelperSession.h"
#include "meet/protocol/StateScript.h"
#include <QProcess>
#include <QTest>
#include <csignal>

using namespace Qt::StringLiterals;
using namespace kestrel;

namespace {

const auto meet = u"https://meet.google.com/"_s;
const auto outerSize = u"`${outerWidth} × ${outerHeight}`"_s;

} // namespace

/// A real browser with Kestrel's own profile on a real display, against the page of a call: relay and helper
/// as they are installed.
class TestOwnProfile final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        m_call.start(QStringLiteral(SAMPLE_CALL), { u"--until-stdin-closes"_s });
        QVERIFY(m_call.waitForReadyRead(30000));
        const QString port = QString::fromUtf8(m_call.readLine()).trimmed();
        m_session = std::make_unique<Session>();
        m_session->write(m_session->preferences(), u"browserProfile=kestrel\n"_s);
        m_session->installBrowser(
            u"/usr/bin/chromium --no-sandbox \"--host-resolver-rules=MAP meet.google.com 127.0.0.1:%1\" "
            "--ignore-certificate-errors --disable-background-networking --disable-component-update "
            "--disable-sync "
            "--disable-quic --password-store=basic %U"_s.arg(port));
    }

    void opensWindowsOfExactlyThatSize()
    {
        QCOMPARE(open(meet + u"first-call?ask"_s, 1000, 360), u"ok"_s);
        QTRY_COMPARE_WITH_TIMEOUT(run(u"document.readyState"_s, u"/first-call"_s), u"ok complete -"_s, 30000);
        QCOMPARE(run(outerSize, u"/first-call"_s), u"ok 1000 × 360 -"_s);
        // the browser runs already
        QCOMPARE(open(meet + u"second-call?muted"_s, 703, 555), u"ok"_s);
        QTRY_COMPARE_WITH_TIMEOUT(run(u"document.readyState"_s, u"/second-call"_s), u"ok complete -"_s,
                                  30000);
        QCOMPARE(run(outerSize, u"/second-call"_s), u"ok 703 × 555 -"_s);
        QCOMPARE(run(u"matchMedia('(display-mode: standalone)').matches"_s, u"/second-call"_s),
                 u"ok true -"_s);
    }

    void theBrowserListensNowhere()
    {
        QSet<QString> listening; // sockets, by their inodes
        for (const auto &table : { u"/proc/net/tcp"_s, u"/proc/net/tcp6"_s }) {
            QFile file(table);
            QVERIFY(file.open(QIODevice::ReadOnly));
            for (const QString &line : QString::fromLatin1(file.readAll()).split(u'\n')) {
                const QStringList fields = line.simplified().split(u' ');
                if (fields.value(3) == "0A"_L1)
                    listening.insert(u"socket:[%1]"_s.arg(fields.value(9)));
            }
        }
        QVERIFY2(!listening.isEmpty(), "the page of the call has a server");
        const QString profile = u"--user-data-dir="_s + m_session->folder.filePath(u"profile"_s);
        int sockets = 0;
        for (const QString &process : QDir(u"/proc"_s).entryList({ u"[0-9]*"_s }, QDir::Dirs)) {
            QFile command(u"/proc/%1/cmdline"_s.arg(process));
            if (!command.open(QIODevice::ReadOnly)
                || !command.readAll().split('\0').contains(QFile::encodeName(profile)))
                continue;
            for (const QFileInfo &entry : QDir(u"/proc/%1/fd"_s.arg(process)).entryInfoList(QDir::System)) {
                const QString open = QFileInfo(entry.symLinkTarget()).fileName();
                sockets += open.startsWith("socket:"_L1) ? 1 : 0;
                QVERIFY(!listening.contains(open));
            }
        }
        QVERIFY2(sockets > 0, "the browser was looked at");
    }

    void runsScripts_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("expected");
        const auto state =
            u"ok {\"mic\":false,\"cam\":true,\"hand\":false,\"share\":false,\"found\":true} -"_s;
        QTest::newRow("state") << stateScript.toString() << state;
        QTest::newRow("number") << u"6 * 7 // x"_s << u"ok 42 -"_s;
        QTest::newRow("promise") << u"Promise.resolve('later')"_s << u"ok later -"_s;
        QTest::newRow("nothing") << u"undefined"_s << u"ok - -"_s;
        QTest::newRow("empty") << QString() << u"ok - -"_s;
        QTest::newRow("throws") << u"null.x"_s
                                << u"- - TypeError: Cannot read properties of null (reading 'x')"_s;
        QTest::newRow("rejects") << u"Promise.reject(new RangeError('no'))"_s << u"- - RangeError: no"_s;
        QTest::newRow("no JavaScript") << u"%%%"_s << u"- - SyntaxError: Unexpected token '%'"_s;
        QTest::newRow("too much") << u"'x'.repeat(300000)"_s << u"- - result too large"_s;
        QTest::newRow("a world of its own")
            << u"(globalThis.kept = 1, typeof options)"_s << u"ok undefined -"_s;
        QTest::newRow("a frame") << u"new Promise(done => requestAnimationFrame(done)).then(() => 'drawn')"_s
                                 << u"ok drawn -"_s;
        QTest::newRow("endless") << u"(() => { for (;;); })()"_s << u"- - script timed out"_s;
        QTest::newRow("goes on after that") << u"kept + 1"_s << u"ok 2 -"_s;
        QTest::newRow("in the eldest tab of all") << u"location.pathname"_s << u"ok /first-call -"_s;
    }
    void runsScripts()
    {
        QFETCH(QString, source);
        const bool isAny = qstrcmp(QTest::currentDataTag(), "in the eldest tab of all") == 0;
        QTEST(run(source, isAny ? QString(meetTabMarker) : u"/second-call"_s), "expected");
    }

    void aDialogHoldsUpNobody()
    {
        QCOMPARE(run(u"void setTimeout(() => alert('wait'))"_s, u"/second-call"_s), u"ok - -"_s);
        QCOMPARE(run(stateScript.toString(), u"/second-call"_s), u"- - script timed out"_s);
        QVERIFY(run(stateScript.toString(), u"/first-call"_s).startsWith("ok {"_L1));
        QCOMPARE(close(u"/second-call"_s), u"ok"_s);
        QTRY_COMPARE_WITH_TIMEOUT(run(outerSize, u"/second-call"_s), u"- - -"_s, 30000);
    }

    void aKilledHelperFindsTheBrowserAgain()
    {
        ::kill(static_cast<pid_t>(m_session->helperPid()), SIGKILL);
        QTRY_VERIFY_WITH_TIMEOUT(!m_session->isHelperThere(), 30000);
        QCOMPARE(run(u"document.title.length > 0"_s, u"/first-call"_s), u"ok true -"_s);
    }

    void closesWhateverThePageAsks()
    {
        // a page may ask once it was clicked
        QCOMPARE(run(u"void document.body.click()"_s, u"/first-call"_s), u"ok - -"_s);
        QCOMPARE(close(u"/first-call"_s), u"ok"_s);
        QTRY_COMPARE_WITH_TIMEOUT(close(meetTabMarker), u"-"_s, 30000);
        // with its last window the browser has gone, and the relay with it
        QTRY_VERIFY_WITH_TIMEOUT(QDir(m_session->sockets()).isEmpty(QDir::System | QDir::Files), 30000);
    }

    void cleanupTestCase()
    {
        m_session.reset();
        m_call.closeWriteChannel();
        m_call.waitForFinished();
    }

private:
    QString open(const QString &url, int width, int height)
    {
        const auto reply =
            started(m_session->channel.openInChromeAppMode(m_session->desktopFile(), url, width, height));
        return hasCome(reply) ? describe(**reply) : u"no answer"_s;
    }
    QString run(const QString &source, const QString &marker, bool activate = false)
    {
        const auto reply = m_session->run(source, activate, marker);
        return hasCome(reply) ? describe(**reply) : u"no answer"_s;
    }
    QString close(const QString &marker)
    {
        const auto reply = started(m_session->channel.closeChromeTab(marker));
        return hasCome(reply) ? describe(**reply) : u"no answer"_s;
    }

    QProcess m_call;
    std::unique_ptr<Session> m_session;
};

QTEST_GUILESS_MAIN(TestOwnProfile)
#include "TestOwnProfile.moc"
