#include "app/AppDelegate.h"
#include "app/StatusText.h"
#include "support/EnglishTexts.h"
#include "support/FakeDesktop.h"
#include "support/FakeGoogle.h"
#include "support/MakeMeeting.h"
#include <QQmlEngine>
#include <QQuickView>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>
#include <QWebSocket>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

Meeting meeting(const QString &id, Instant start, std::chrono::minutes length)
{
    Meeting made = makeMeeting(id, start, start + length);
    made.meetingURL = QUrl(u"https://meet.example.com/"_s + id);
    return made;
}

} // namespace

/// The whole application on fakes, drawn off screen.
class TestAppDelegate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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

    void nothingIsOpenedBeforeThePersonJoins()
    {
        google->preferences.setBoolean(u"popover.hasShownInitialAutoOpen.v1"_s, true);
        AccountRegistry(google->preferences).add(google->account(u"A"_s));
        google->answerEvents(u"primary"_s, {});
        start();
        QTRY_VERIFY2(delegate->environment().lastRefresh(),
                     "the refresh of the start takes nothing away later");
        const Instant begin = google->clock.now() + 10min;
        delegate->environment().store().replace(u"A"_s, { meeting(u"hostile"_s, begin, 30min) });
        QTRY_COMPARE(desktop->alertTimer.armed, begin - 5min);
        Q_EMIT desktop->statusItem.activated({});
        // both of its alerts, its start and its end
        for (const auto passed : { -5min, -1min, 0min, 10min, 31min }) {
            google->clock.setNow(begin + passed);
            desktop->alertTimer.fire();
            QTRY_VERIFY2(isShown(u"hostile"_s), "its card");
        }
        QCOMPARE(google->opener.opened, QList<QUrl>());
        QCOMPARE(desktop->helper.opened.size(), 0);

        google->clock.setNow(begin);
        QVERIFY(delegate->joinNextMeeting());
        QCOMPARE(google->opener.opened, QList { QUrl(u"https://meet.example.com/hostile"_s) });
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

        preferences.setHotkey({}, HotkeyAction::meetMute);
        QTRY_COMPARE(bound(), u"1 3 4 5 16 17 6 7 8 9 10 11 12 13 14 15"_s);

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
        QCOMPARE(desktop->loginItem.isEnabled, true); // unless the person turns it off
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

    /// What happens, each step with what is seen after it: the alerts since with their instants (in UTC), the
    /// countdown in the panel, the agenda.
    void timeInItsUnusualWays_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QString>("now");
        QTest::addColumn<QStringList>("starts"); // of A, B …, half an hour long
        QTest::addColumn<QStringList>("course");
        QTest::newRow("set an hour ahead, and back")
            << QByteArray("UTC") << u"2025-07-01T09:00:00Z"_s
            << QStringList { u"2025-07-01T10:02:00Z"_s, u"2025-07-01T11:30:00Z"_s }
            << QStringList {
                   u"set 60: 10:00:00.000 A| in 2 min| 10:02 – 10:32  A, 11:30 – 12:00  B"_s,
                   u"set -60: | in 1 h 2 min| 10:02 – 10:32  A, 11:30 – 12:00  B"_s,
                   u"awake 60: | in 2 min| 10:02 – 10:32  A, 11:30 – 12:00  B"_s,
                   u"awake 91: 10:01:00.000 A, 11:25:00.000 B, 11:29:00.000 B| | 11:30 – 12:00  B"_s
               };
        QTest::newRow("set a day ahead, and back")
            << QByteArray("UTC") << u"2025-07-01T09:00:00Z"_s << QStringList { u"2025-07-01T10:00:00Z"_s }
            << QStringList { u"set 1440: | | "_s, u"set -1440: | in 1 h 0 min| 10:00 – 10:30  A"_s,
                             u"awake 62: 09:55:00.000 A, 09:59:00.000 A| | 10:00 – 10:30  A"_s };
        QTest::newRow("asleep over an alert, and over a whole meeting")
            << QByteArray("UTC") << u"2025-07-01T09:00:00Z"_s
            << QStringList { u"2025-07-01T09:30:00Z"_s, u"2025-07-01T10:30:00Z"_s, u"2025-07-01T13:00:00Z"_s }
            << QStringList { u"asleep 28: 09:28:00.000 A| in 2 min| 09:30 – 10:00  A, 10:30 – 11:00  B, "
                             "13:00 – 13:30  C"_s,
                             u"asleep 40: | in 22 min| 10:30 – 11:00  B, 13:00 – 13:30  C"_s,
                             u"awake 18: 10:25:00.000 B| in 4 min| 10:30 – 11:00  B, 13:00 – 13:30  C"_s,
                             u"asleep 120: | in 34 min| 13:00 – 13:30  C"_s,
                             u"awake 30: 12:55:00.000 C| in 4 min| 13:00 – 13:30  C"_s };
        QTest::newRow("02:00 becomes 03:00")
            << QByteArray("Europe/Berlin") << u"2025-03-30T00:50:00Z"_s
            << QStringList { u"2025-03-30T01:30:00Z"_s }
            << QStringList { u"awake 1: | in 39 min| 03:30 – 04:00  A"_s,
                             u"awake 40: 01:25:00.000 A, 01:29:00.000 A| | 03:30 – 04:00  A"_s };
        QTest::newRow("03:00 becomes 02:00")
            << QByteArray("Europe/Berlin") << u"2025-10-25T23:50:00Z"_s
            << QStringList { u"2025-10-26T00:30:00Z"_s, u"2025-10-26T01:30:00Z"_s }
            << QStringList { u"awake 1: | in 39 min| 02:30 – 02:00  A, 02:30 – 03:00  B"_s,
                             u"awake 60: 00:25:00.000 A, 00:29:00.000 A| in 39 min| 02:30 – 02:00  A, "
                             "02:30 – 03:00  B"_s,
                             u"asleep 35: 01:26:00.000 B| in 4 min| 02:30 – 03:00  B"_s };
        QTest::newRow("half an hour from Greenwich")
            << QByteArray("America/St_Johns") << u"2025-03-09T05:20:00Z"_s
            << QStringList { u"2025-03-09T05:45:00Z"_s }
            << QStringList { u"awake 1: | in 24 min| 03:15 – 03:45  A"_s,
                             u"awake 40: 05:40:00.000 A, 05:44:00.000 A| | 03:15 – 03:45  A"_s };
        QTest::newRow("02:00 becomes 01:30")
            << QByteArray("Australia/Lord_Howe") << u"2025-04-05T14:40:00Z"_s
            << QStringList { u"2025-04-05T14:50:00Z"_s, u"2025-04-05T15:20:00Z"_s }
            << QStringList { u"awake 1: | in 9 min| 01:50 – 01:50  A, 01:50 – 02:20  B"_s,
                             u"awake 45: 14:45:00.000 A, 14:49:00.000 A, 15:15:00.000 B, 15:19:00.000 B| | "
                             "01:50 – 02:20  B"_s };
        QTest::newRow("a journey") << QByteArray("Europe/Berlin") << u"2025-07-01T10:00:00Z"_s
                                   << QStringList { u"2025-07-01T11:00:00Z"_s }
                                   << QStringList {
                                          u"awake 1: | in 59 min| 13:00 – 13:30  A"_s,
                                          u"zone America/St_Johns: | in 59 min| 08:30 – 09:00  A"_s,
                                          u"awake 56: 10:55:00.000 A| in 3 min| 08:30 – 09:00  A"_s
                                      };
    }
    void timeInItsUnusualWays()
    {
        QFETCH(const QByteArray, zone);
        QFETCH(const QString, now);
        QFETCH(const QStringList, starts);
        QFETCH(const QStringList, course);
        const auto restore = qScopeGuard([before = qgetenv("TZ")] { qputenv("TZ", before); });
        // on waking up the kernel's word comes first or logind's
        for (const bool kernelFirst : { true, false }) {
            init();
            qputenv("TZ", zone);
            google->preferences.setBoolean(u"popover.hasShownInitialAutoOpen.v1"_s, true);
            google->clock.setNow(*parseInternetDateTime(now));
            desktop->windows.placesWindows = false; // notices are enough to see what is presented
            start();
            FakeGoogle::settle();
            QList<Meeting> meetings;
            for (const QString &at : starts)
                meetings += meeting(QChar(u'A' + static_cast<char16_t>(meetings.size())),
                                    *parseInternetDateTime(at), 30min);
            delegate->environment().store().replace(u"A"_s, meetings);
            FakeGoogle::settle();

            QStringList seen;
            for (const QString &step : course) {
                const QString what = step.section(u':', 0, 0);
                const QString alerts = carryOut(what.section(u' ', 0, 0), what.section(u' ', 1), kernelFirst);
                const PanelStatus status = panelStatus(delegate->environment(), delegate->menuBar());
                seen += u"%1: %2| %3| %4"_s.arg(what, alerts, status.label, status.agenda.join(u", "_s));
            }
            QCOMPARE(seen, course);
            cleanup();
        }
    }

    void aMissingKeyringIsToldWhenItStaysAway()
    {
        google->preferences.setBoolean(u"popover.hasShownInitialAutoOpen.v1"_s, true);
        start({ .missingClient = {}, .secretsPatience = 0ms });
        Q_EMIT google->secrets.trouble(u"none answers"_s);
        Q_EMIT google->secrets.opened();
        FakeGoogle::settle();
        QCOMPARE(desktop->notifications.shown.size(), 0);
        Q_EMIT google->secrets.trouble(u"none answers"_s);
        QTRY_COMPARE(desktop->notifications.open.size(), 1);
        QCOMPARE(desktop->notifications.open.first().text, u"none answers"_s);
        Q_EMIT google->secrets.opened();
        QVERIFY(desktop->notifications.open.isEmpty());
    }

private:
    /// The alerts of a step with the instants at which they are presented.
    QString carryOut(const QString &what, const QString &amount, bool kernelFirst)
    {
        QStringList alerts;
        AlertPresenter &presenter = delegate->environment().presenter();
        const auto look = [&] {
            FakeGoogle::settle();
            if (!presenter.activeIDs().isEmpty())
                alerts += toInternetDateTimeWithMilliseconds(google->clock.now()).mid(11, 12) + u' '
                    + presenter.activeIDs().join(u' ');
            presenter.dismissAll();
        };
        const auto fireWhatIsDue = [&](Instant until) {
            while (desktop->alertTimer.armed && *desktop->alertTimer.armed <= until && alerts.size() < 20) {
                google->clock.setNow(std::max(google->clock.now(), *desktop->alertTimer.armed));
                desktop->alertTimer.fire();
                look();
            }
        };
        if (what == "zone"_L1) {
            qputenv("TZ", amount.toUtf8());
            return {};
        }
        const Instant then = google->clock.now() + std::chrono::minutes(amount.toInt());
        if (what == "awake"_L1) {
            fireWhatIsDue(then);
            google->clock.setNow(then);
            EventStore &store = delegate->environment().store();
            store.replace(u"A"_s, QList(store.upcoming())); // as the refresh of each minute does
        } else {
            google->clock.setNow(then);
            if (what == "asleep"_L1 && kernelFirst)
                fireWhatIsDue(then);
            desktop->alertTimer.jump();
            look();
            fireWhatIsDue(then);
        }
        FakeGoogle::settle();
        return alerts.join(u", "_s);
    }

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

    EnglishTexts texts;
    std::unique_ptr<FakeGoogle> google;
    std::unique_ptr<FakeDesktop> desktop;
    std::unique_ptr<AppDelegate> delegate;
};

} // namespace kestrel

QTEST_MAIN(kestrel::TestAppDelegate)
#include "TestAppDelegate.moc"
