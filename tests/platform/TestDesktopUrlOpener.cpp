#include "platform/linux/DesktopUrlOpener.h"
#include "support/Files.h"
#include <QCoro/QCoroTask>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

const QUrl address(u"https://example.com/a%20b?q=%22x%22&n=1;$(id)#frag"_s);

} // namespace

class TestDesktopUrlOpener final : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;

    /// A browser that first writes its number of arguments and the first one to "said".
    [[nodiscard]] QString browser(const QByteArray &rest, const QString &name = u"my browser"_s) const
    {
        const QString path = m_folder->filePath(name);
        writeProgram(path,
                     "#!/bin/sh\ncd '" + QFile::encodeName(m_folder->path())
                         + "'\nprintf '%s %s' $# \"$1\" >said\n" + rest);
        return path;
    }

    [[nodiscard]] QByteArray said(const QString &name = u"said"_s) const
    {
        return contentOf(m_folder->filePath(name));
    }

    /// Lets a browser go on that reads a line from "gate".
    [[nodiscard]] bool openGate() const
    {
        const int gate = ::open(QFile::encodeName(m_folder->filePath(u"gate"_s)).constData(), O_WRONLY);
        const bool done = gate >= 0 && ::write(gate, "\n", 1) == 1;
        ::close(gate);
        return done;
    }

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QCOMPARE(::mkfifo(QFile::encodeName(m_folder->filePath(u"gate"_s)).constData(), 0600), 0);
    }
    void cleanup() { qunsetenv("KESTREL_BROWSER"); }

    void theBrowserGetsTheAddressAlone_data()
    {
        QTest::addColumn<QByteArray>("ending");
        QTest::addColumn<bool>("opened");
        QTest::newRow("ends well") << QByteArray("exit 0\n") << true;
        QTest::newRow("fails") << QByteArray("exit 3\n") << false;
    }

    void theBrowserGetsTheAddressAlone()
    {
        QFETCH(QByteArray, ending);
        qputenv("KESTREL_BROWSER", QFile::encodeName(browser(ending)));
        DesktopUrlOpener opener(1min);
        QTEST(QCoro::waitFor(opener.open(address)), "opened");
        QCOMPARE(said(), "1 " + address.toEncoded());
    }

    void theDesktopsOpenerIsUsedWhereNoneIsChosen()
    {
        QVERIFY(!browser("exit 0\n", u"xdg-open"_s).isEmpty());
        const QByteArray before = qgetenv("PATH");
        qputenv("PATH", QFile::encodeName(m_folder->path()) + ':' + before);
        DesktopUrlOpener opener(1min);
        const bool opened = QCoro::waitFor(opener.open(address));
        qputenv("PATH", before);
        QVERIFY(opened);
        QCOMPARE(said(), "1 " + address.toEncoded());
    }

    void aProgramThatIsNotThereFailsWithoutDelay()
    {
        qputenv("KESTREL_BROWSER", "/nonexistent/browser --with arguments");
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"cannot be started"_s));
        DesktopUrlOpener opener(24h);
        QVERIFY(!QCoro::waitFor(opener.open(address)));
    }

    void onlyWebAddressesAreOpened()
    {
        qputenv("KESTREL_BROWSER", QFile::encodeName(browser("exit 0\n")));
        DesktopUrlOpener opener(1min);
        for (const auto &url : { u"file:///etc/passwd"_s, u"javascript:alert(1)"_s,
                                 u"zoommtg://zoom.us/join"_s, u"example.com"_s, u"https:///x"_s, u""_s }) {
            QVERIFY2(!QCoro::waitFor(opener.open(QUrl(url))), qPrintable(url));
            QCOMPARE(said(), "");
        }
    }

    void aBrowserThatStaysOpenIsReapedInTheEnd()
    {
        qputenv("KESTREL_BROWSER", QFile::encodeName(browser("echo $$ >pid\nread line <gate\nexit 3\n")));
        DesktopUrlOpener opener(1ms);
        QVERIFY(QCoro::waitFor(opener.open(address)));
        QTRY_VERIFY(!said(u"pid"_s).isEmpty());
        const QString process = u"/proc/"_s + QString::fromLatin1(said(u"pid"_s).trimmed());
        QVERIFY(QFile::exists(process));
        QVERIFY(openGate());
        QTRY_VERIFY(!QFile::exists(process)); // a zombie would still be there
    }

    void theBrowserOutlivesUsInASessionOfItsOwn()
    {
        qputenv("KESTREL_BROWSER",
                QFile::encodeName(
                    browser("read line <gate\ncut -d' ' -f6 /proc/$$/stat >session\necho $$ >pid\n")));
        QCOMPARE(QProcess::execute(QStringLiteral(OPEN_AND_LEAVE), { address.toString(QUrl::FullyEncoded) }),
                 0);
        QVERIFY(openGate());
        QTRY_VERIFY(!said(u"pid"_s).isEmpty());
        QCOMPARE(said(u"session"_s), said(u"pid"_s));
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestDesktopUrlOpener)
#include "TestDesktopUrlOpener.moc"
