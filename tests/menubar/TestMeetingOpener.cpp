#include "menubar/Desk.h"
#include <QTest>

using namespace kestrel;
using namespace Qt::StringLiterals;

class TestMeetingOpener : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void handsTheRightAddressToTheRightBrowser_data();
    void handsTheRightAddressToTheRightBrowser();
    void sizesTheAppWindowByPreferencesOrScreen_data();
    void sizesTheAppWindowByPreferencesOrScreen();
};

namespace {
const QString chrome = u"/usr/share/applications/google-chrome.desktop"_s;
enum class Helper { Answers, Declines, Unreachable };
} // namespace
Q_DECLARE_METATYPE(Helper)

void TestMeetingOpener::handsTheRightAddressToTheRightBrowser_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("email");
    QTest::addColumn<MeetLaunchMode>("mode");
    QTest::addColumn<bool>("hasChrome");
    QTest::addColumn<Helper>("helper");
    QTest::addColumn<QString>("inBrowser");
    QTest::addColumn<QString>("inAppMode");

    const QString meet = u"https://meet.google.com/abc"_s;
    const QString zoom = u"https://example.zoom.us/j/1?authuser=0"_s;
    const QString ann = u"ann+work@example.com"_s;
    const QString named = u"authuser=ann%2Bwork@example.com"_s;
    const auto tab = MeetLaunchMode::Tab;
    const auto popup = MeetLaunchMode::Popup;
    const QString none;

    QTest::newRow("the account comes last, what stood there goes")
        << meet + u"?authuser=0&hl=en&authuser=1"_s << ann << tab << true << Helper::Answers
        << meet + u"?hl=en&"_s + named << none;
    QTest::newRow("other items keep their encoding and order")
        << meet + u"?b=%2B+%26&a=1&&c#part"_s << ann << tab << true << Helper::Answers
        << meet + u"?b=%2B+%26&a=1&&c&"_s + named + u"#part"_s << none;
    QTest::newRow("a name that only begins alike stays")
        << meet + u"?authuser2=0&Authuser=1"_s << ann << tab << true << Helper::Answers
        << meet + u"?authuser2=0&Authuser=1&"_s + named << none;
    QTest::newRow("without an e-mail nothing is rewritten")
        << meet + u"?authuser=0"_s << none << tab << true << Helper::Answers << meet + u"?authuser=0"_s
        << none;
    QTest::newRow("another service is not rewritten and gets a tab")
        << zoom << ann << popup << true << Helper::Answers << zoom << none;
    QTest::newRow("app mode") << meet << ann << popup << true << Helper::Answers << none
                              << meet + u'?' + named;
    QTest::newRow("app mode with an empty e-mail")
        << meet << u""_s << popup << true << Helper::Answers << none << meet;
    QTest::newRow("a helper that declines has the last word")
        << meet << none << popup << true << Helper::Declines << none << meet;
    QTest::newRow("a helper that cannot be reached leaves it to the browser")
        << meet << ann << popup << true << Helper::Unreachable << meet + u'?' + named << meet + u'?' + named;
    QTest::newRow("no Chromium") << meet << none << popup << false << Helper::Answers << meet << none;
    QTest::newRow("not https") << u"http://meet.google.com/abc"_s << ann << tab << true << Helper::Answers
                               << none << none;
    QTest::newRow("too long") << meet + QString(2048, u'a') << ann << tab << true << Helper::Answers << none
                              << none;
}

void TestMeetingOpener::handsTheRightAddressToTheRightBrowser()
{
    QFETCH(QString, url);
    QFETCH(QString, email);
    QFETCH(MeetLaunchMode, mode);
    QFETCH(bool, hasChrome);
    QFETCH(Helper, helper);
    QFETCH(QString, inBrowser);
    QFETCH(QString, inAppMode);
    Desk desk;
    if (hasChrome)
        desk.applications.locations.insert(u"com.google.Chrome"_s, chrome);
    if (helper == Helper::Declines)
        desk.helper.answer = HelperReply { false, u"no"_s };
    else if (helper == Helper::Unreachable)
        desk.helper.answer = std::unexpected(HelperError { HelperError::Kind::Unreachable, u"gone"_s });

    desk.opener.open(QUrl(url), email.isNull() ? std::nullopt : std::optional(email), mode);

    QCOMPARE(desk.browser.opened, inBrowser.isEmpty() ? QList<QUrl>() : QList { QUrl(inBrowser) });
    QCOMPARE(desk.helper.opened.size(), inAppMode.isEmpty() ? 0 : 1);
    if (!inAppMode.isEmpty())
        QCOMPARE(desk.helper.opened.first(), (FakeHelperChannel::Opened { chrome, inAppMode, 1300, 800 }));
}

void TestMeetingOpener::sizesTheAppWindowByPreferencesOrScreen_data()
{
    QTest::addColumn<QSize>("preferred");
    QTest::addColumn<QSize>("screen");
    QTest::addColumn<QSize>("expected");
    QTest::newRow("as preferred") << QSize(700, 500) << QSize(800, 600) << QSize(700, 500);
    QTest::newRow("1440 lines") << QSize(0, 800) << QSize(2560, 1440) << QSize(1000, 360);
    QTest::newRow("2160 lines") << QSize(0, 0) << QSize(3840, 2160) << QSize(1000, 540);
    QTest::newRow("a height alone is none") << QSize(1300, 0) << QSize(1280, 800) << QSize(1000, 360);
    QTest::newRow("narrow") << QSize(0, 0) << QSize(1024, 768) << QSize(924, 360);
    QTest::newRow("no screen") << QSize(-1, 5) << QSize() << QSize(1000, 360);
}

void TestMeetingOpener::sizesTheAppWindowByPreferencesOrScreen()
{
    QFETCH(QSize, preferred);
    QFETCH(QSize, screen);
    Desk desk;
    desk.preferences.setPopupWindowWidth(preferred.width());
    desk.preferences.setPopupWindowHeight(preferred.height());
    const QRect frame = screen.isValid() ? QRect(QPoint(), screen) : QRect();
    desk.screens.setFrames(frame, frame);
    QTEST(desk.opener.popupWindowSize(), "expected");
}

QTEST_MAIN(TestMeetingOpener)
#include "TestMeetingOpener.moc"
