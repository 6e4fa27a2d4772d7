#include "app/AppDelegate.h"
#include "support/FakeDesktop.h"
#include "support/FakeGoogle.h"
#include <QQmlEngine>
#include <QQuickView>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>
#include <QTranslator>
#include <QWebSocket>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

Meeting meeting(const QString &id, Instant start, std::chrono::minutes length)
{
    Meeting made;
    made.id = id;
    made.accountID = u"A"_s;
    made.title = id;
    made.start = start;
    made.end = start + length;
    made.meetingURL = QUrl(u"https://meet.example.com/"_s + id);
    return made;
}

} // namespace

/// The whole application on fakes, drawn off screen.
class TestAppDelegate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(translator.load(u":/i18n/kestrel_en.qm"_s));
        QCoreApplication::installTranslator(&translator);
    }

    void init()
    {
        google = std::make_unique<FakeGoogle>();
        desktop = std::make_unique<FakeDesktop>();
    }

    void cleanup()
    {
        delegate.reset();
        google->finish();
    }

    void joinsWhatAPersonWouldMeanNow()
    {
        google->preferences.setBoolean(u"popover.hasShownInitialAutoOpen.v1"_s, true);
        AccountRegistry(google->preferences).add(google->account(u"A"_s));
        start();
        const Instant now = google->clock.now();
        EventStore &store = delegate->environment().store();

        QVERIFY(!delegate->joinNextMeeting());
        QVERIFY2(isAgendaShown(), "nothing to join: the agenda instead");
        QVERIFY(google->opener.opened.isEmpty());

        store.replace(u"A"_s,
                      { meeting(u"running"_s, now - 10min, 30min), meeting(u"soon"_s, now + 4min, 30min) });
        QCOMPARE(delegate->joinNextMeeting()->id, u"soon"_s);
        delegate->environment().preferences().setLeadTimeMinutes(1);
        QCOMPARE(delegate->joinNextMeeting()->id, u"running"_s);
        QCOMPARE(google->opener.opened.size(), 2);
    }

    void onboardingSaysWhatWentWrongAndForgetsItAtTheNextPress()
    {
        google->preferences.setBoolean(u"popover.hasShownInitialAutoOpen.v1"_s, true);
        start();
        OnboardingModel onboarding(delegate->environment().google(), {});
        google->opener.succeeds = false;
        onboarding.connectAccount();
        QTRY_VERIFY(!onboarding.isSigningIn());
        QVERIFY(!onboarding.error().isEmpty());

        google->opener.succeeds = true; // a browser that nobody answers in
        onboarding.connectAccount();
        QVERIFY(onboarding.isSigningIn());
        QVERIFY(onboarding.error().isEmpty());

        OnboardingModel without(delegate->environment().google(), u"make a client first"_s);
        without.connectAccount();
        QVERIFY(!without.isSigningIn());
        QCOMPARE(without.error(), u"make a client first"_s);
    }

    void theFirstStartShowsOnboardingOnceAndWithoutAWarning()
    {
        QTest::failOnWarning(QRegularExpression(u"qrc:"_s));
        start();
        QVERIFY(!isAgendaShown());
        QTRY_VERIFY(isAgendaShown());
        QCOMPARE(desktop->loginItem.isEnabled, true);
        QCOMPARE(google->preferences.boolean(u"popover.hasShownInitialAutoOpen.v1"_s), true);
    }

    void shortcutsAndBridgeFollowThePreferences()
    {
        google->preferences.setBoolean(u"popover.hasShownInitialAutoOpen.v1"_s, true);
        const quint16 port = freePort();
        start({ .bridgePort = port });
        Preferences &preferences = delegate->environment().preferences();
        const auto bound = [this] {
            QStringList names;
            for (const ShortcutBackend::Shortcut &shortcut :
                 desktop->shortcuts.sets.value(desktop->shortcuts.sets.size() - 1))
                names << QString::number(shortcut.id);
            return names.join(u' ');
        };
        QCOMPARE(bound(), QString());

        preferences.setEnableJoinShortcut(true);
        QTRY_COMPARE(bound(), u"1"_s);
        desktop->shortcuts.press(1);
        QTRY_VERIFY2(isAgendaShown(), "nothing to join: the agenda instead");
        preferences.setHotkey({}, HotkeyAction::join);
        QTRY_COMPARE(bound(), QString());
        preferences.resetHotkey(HotkeyAction::join);
        preferences.setEnableMeetControls(true);
        QTRY_COMPARE(bound(), u"1 2 3 4 5 16 17 6 7 8 9 10 11 12 13 14 15"_s);

        // the bridge tells what the poll of the controls has found out
        desktop->helper.scriptAnswer = HelperScriptReply {
            true, uR"({"mic":false,"cam":true,"hand":false,"share":false,"found":true})"_s, {}
        };
        preferences.setEnableStreamDeckBridge(true);
        QWebSocket client;
        QSignalSpy messages(&client, &QWebSocket::textMessageReceived);
        // it listens from the next turn on
        QTest::qWait(0);
        client.open(QUrl(u"ws://127.0.0.1:%1"_s.arg(port)));
        QTRY_VERIFY(!messages.isEmpty()
                    && messages.last().first().toString().contains(uR"("micOn":false)"_s));
        client.sendTextMessage(uR"({"cmd":"meetHand"})"_s);
        QTRY_VERIFY(std::ranges::any_of(desktop->helper.executed, [](const auto &call) {
            return call.jsSource.contains("raise hand"_L1) && call.jsSource.contains("click()"_L1);
        }));
        preferences.setEnableStreamDeckBridge(false);
        QTRY_COMPARE(client.state(), QAbstractSocket::UnconnectedState);

        preferences.setEnableMeetControls(false);
        QTRY_COMPARE(bound(), u"1"_s);
        QTRY_VERIFY(!delegate->environment().meetState().inMeeting());
    }

    void theSettingsOpenFromAgendaAndPanel()
    {
        QTest::failOnWarning(QRegularExpression(u"qrc:"_s));
        google->preferences.setBoolean(u"popover.hasShownInitialAutoOpen.v1"_s, true);
        start();
        QVERIFY(!isShown(u"Kestrel Settings"_s));
        delegate->agenda().openSettings();
        QVERIFY(isShown(u"Kestrel Settings"_s));
        delegate.reset();
        QVERIFY(!isShown(u"Kestrel Settings"_s));
        start();
        Q_EMIT desktop->statusItem.menuTriggered(u"settings"_s);
        QVERIFY(isShown(u"Kestrel Settings"_s));
    }

    void aMissingTrayIsSaidOnceForAll()
    {
        google->preferences.setBoolean(u"popover.hasShownInitialAutoOpen.v1"_s, true);
        for (int login = 0; login < 2; ++login) {
            start();
            Q_EMIT desktop->statusItem.unavailable(u"install a tray"_s);
            delegate.reset();
        }
        QCOMPARE(desktop->notifications.shown.size(), 1);
        QCOMPARE(desktop->notifications.shown.first().text, u"install a tray"_s);
    }

    void anEndedSignInIsToldAndLeadsToTheAccounts()
    {
        google->preferences.setBoolean(u"popover.hasShownInitialAutoOpen.v1"_s, true);
        AccountRegistry(google->preferences).add(google->account(u"A"_s));
        google->secrets.secrets.clear();
        start();
        const auto &shown = desktop->notifications.shown;
        QTRY_COMPARE(shown.size(), 1);
        QCOMPARE(shown.first().title, u"a@example.com is not signed in"_s);
        QCOMPARE(delegate->agenda().signedOutText(), shown.first().title);
        QVERIFY(desktop->statusItem.state->toolTip.contains(shown.first().title));
        desktop->notifications.choose(shown.first().key, shown.first().actions.first().first);
        QVERIFY(isShown(u"Kestrel Settings"_s));

        QVERIFY(QCoro::waitFor(delegate->environment().google().signOut(u"A"_s)));
        QTRY_COMPARE(delegate->agenda().signedOutText(), QString());
        QCOMPARE(shown.size(), 1);
    }

private:
    void start(const AppDelegate::Start &how = {})
    {
        delegate =
            std::make_unique<AppDelegate>(google->preferences, google->services(), desktop->services(), how);
    }

    [[nodiscard]] static quint16 freePort()
    {
        QTcpServer probe;
        probe.listen(QHostAddress::LocalHost);
        return probe.serverPort();
    }

    [[nodiscard]] static bool isShown(const QString &title)
    {
        return std::ranges::any_of(QGuiApplication::topLevelWindows(), [&](const QWindow *window) {
            return window->title() == title && window->isVisible();
        });
    }
    [[nodiscard]] static bool isAgendaShown() { return isShown(u"Kestrel"_s); }

    QTranslator translator;
    std::unique_ptr<FakeGoogle> google;
    std::unique_ptr<FakeDesktop> desktop;
    std::unique_ptr<AppDelegate> delegate;
};

} // namespace kestrel

QTEST_MAIN(kestrel::TestAppDelegate)
#include "TestAppDelegate.moc"
