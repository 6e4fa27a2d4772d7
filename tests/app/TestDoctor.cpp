#include "app/AppDelegate.h"
#include "app/Verbs.h"
#include "support/FakeDesktop.h"
#include "support/FakeGoogle.h"
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

const QString tokenPath = u"/token"_s;

/// A Kestrel on fakes that is in good health: one account, one meeting an hour ahead.
struct Ward
{
    FakeGoogle google;
    FakeDesktop desktop;
    std::unique_ptr<AppDelegate> delegate;
    std::unique_ptr<Verbs> verbs;
    std::chrono::milliseconds patience = Doctor::usualPatience;
    QList<FakeGoogle::Event> events { { u"e"_s } };
    int status = 200; ///< of the calendar's answers

    Ward()
    {
        google.preferences.setBoolean(u"popover.hasShownInitialAutoOpen.v1"_s, true);
        admit(u"A"_s);
        Preferences(google.preferences).setEnableJoinShortcut(true);
        desktop.browser.current.browsers = { u"Chromium"_s };
        desktop.browser.current.isInstalled = true;
    }
    ~Ward()
    {
        google.secrets.speak();
        verbs.reset();
        delegate.reset();
        google.finish();
    }

    void admit(const QString &id) { AccountRegistry(google.preferences).add(google.account(id)); }

    void start()
    {
        google.transport.answer(FakeGoogle::eventsPath(), status,
                                status == 200 ? google.page(events) : "busy");
        const AppDelegate::Start how { .missingClient = {}, .doctorPatience = patience };
        delegate =
            std::make_unique<AppDelegate>(google.preferences, google.services(), desktop.services(), how);
        AppEnvironment &environment = delegate->environment();
        verbs = std::make_unique<Verbs>(environment.registry(), environment.google(), QString());
        verbs->setDelegate(delegate.get());
        FakeGoogle::settle();
    }

    [[nodiscard]] VerbResult doctor(const QStringList &options = {})
    {
        return QCoro::waitFor(verbs->run(QStringList { u"doctor"_s } + options));
    }
};

using Change = std::function<void(Ward &)>;

} // namespace

class TestDoctor : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void namesEachFault_data();
    void namesEachFault();
    void tellsTheNextThreeAlerts();
    void showsATestAlert_data();
    void showsATestAlert();
    void leavesRealAlertsAlone();
    void saysNothingPrivate();
};

void TestDoctor::namesEachFault_data()
{
    QTest::addColumn<Change>("before"); // it starts
    QTest::addColumn<Change>("after");
    QTest::addColumn<QString>("verdict"); // a part of it
    QTest::addColumn<QString>("finding"); // a whole line without its section
    const Change none = [](Ward &) { };
    const QString fires = u"✓ Your next alert fires at 09:25:00 (in 55 min)."_s; // St. John's
    const auto before = [&](const char *name, const Change &change, const QString &verdict,
                            const QString &finding) {
        QTest::newRow(name) << change << none << verdict << finding;
    };
    const auto after = [&](const char *name, const Change &change, const QString &verdict,
                           const QString &finding) {
        QTest::newRow(name) << none << change << verdict << finding;
    };

    before("nothing", none, fires,
           u"✓ account 1: signed in, 1 calendar read 0 s ago, access token good until "_s);

    // what keeps alerts away
    before(
        "no account", [](Ward &ward) { AccountRegistry(ward.google.preferences).remove(u"A"_s); },
        u"✗ No alert can be planned (accounts: none is connected)."_s, u"✗ none is connected\n"_s);
    before(
        "signed out", [](Ward &ward) { ward.google.secrets.secrets.clear(); },
        u"✗ No alert can be planned (accounts: account 1: not signed in)."_s,
        u"✗ account 1: not signed in\n"_s);
    after(
        "a grant that was revoked",
        [](Ward &ward) {
            ward.google.clock.setNow(ward.google.clock.now() + std::chrono::years(6));
            ward.google.transport.answer(tokenPath, 400, "{}");
            QCoro::waitFor(ward.delegate->environment().refresh());
        },
        u"✗ No alert can be planned"_s,
        u"✗ account 1: not signed in any more (HTTP 400 from the sign-in server)\n"_s);
    before(
        "calendars that cannot be read", [](Ward &ward) { ward.status = 503; },
        u"✗ No alert can be planned"_s, u"✗ account 1: never read; the last attempt failed: HTTP 503\n"_s);
    before(
        "a calendar among others",
        [](Ward &ward) {
            Preferences(ward.google.preferences).setSelectedCalendarIDs({ u"primary"_s, u"gone"_s }, u"A"_s);
            ward.google.transport.answer(FakeGoogle::eventsPath(u"gone"_s), 404, "gone");
        },
        fires, u"! account 1: 1 of 2 calendars could not be read: HTTP 404\n"_s);
    before(
        "not read yet", [](Ward &ward) { ward.google.transport.hold(); }, u"✗ No alert can be planned"_s,
        u"✗ account 1: signed in, not read yet\n"_s);
    before(
        "a keyring locked from the start", [](Ward &ward) { ward.google.secrets.lock(); },
        u"✗ No alert can be planned (keyring: locked (gnome-keyring-d))."_s,
        u"✗ account 1: its sign-in is in the keyring\n"_s);
    after(
        "a locked keyring", [](Ward &ward) { ward.google.secrets.lock(); },
        u"✗ Your next alert is planned for 09:25:00 (in 55 min), but something stands in the way (keyring: "
        "locked (gnome-keyring-d))."_s,
        u"✗ locked (gnome-keyring-d)\n"_s);
    after(
        "no keyring", [](Ward &ward) { ward.google.secrets.health = SecretStatus::Unavailable; },
        u"✗ Your next alert is planned"_s, u"✗ none answers\n"_s);
    before(
        "a keyring that hangs",
        [](Ward &ward) {
            ward.google.secrets.isMute = true;
            ward.patience = 0ms;
        },
        u"✗ Your next alert is planned"_s, u"✗ the secret service does not answer\n"_s);
    after(
        "no refresh any more", [](Ward &ward) { ward.google.clock.setNow(ward.google.clock.now() + 10min); },
        u"✗ Your next alert is planned for 09:25:00 (in 45 min)"_s,
        u"✗ last 10 min ago, though every minute is due\n"_s);
    before(
        "a timer that the system does not take", [](Ward &ward) { ward.desktop.alertTimer.isBroken = true; },
        u"✗ Your next alert will not fire: the timer is not armed for 09:25:00."_s,
        u"✗ not armed for 09:25:00\n"_s);
    after(
        "a timer that stands wrong",
        [](Ward &ward) { ward.desktop.alertTimer.armed = ward.google.clock.now() + 2h; },
        u"✗ Your next alert will not fire"_s, u"✗ armed for 10:30:00 instead of 09:25:00\n"_s);
    before(
        "no display",
        [](Ward &ward) {
            ward.desktop.screens.setFrames({}, {});
            ward.desktop.windows.placesWindows = false;
        },
        u"✗ Your next alert will not be seen: there is no display."_s, u"✗ there is no display\n"_s);
    before(
        "nobody shows notifications",
        [](Ward &ward) {
            ward.desktop.windows.placesWindows = false;
            ward.desktop.notifications.isAvailable = false;
        },
        u"✗ Your next alert will not be seen"_s,
        u"✗ no card can be placed here, and nobody shows notifications\n"_s);

    // what does not
    before(
        "notifications without buttons",
        [](Ward &ward) {
            ward.desktop.windows.placesWindows = false;
            ward.desktop.notifications.current.capabilities.clear();
        },
        fires,
        u"! notifications through mako 1.7, since no card can be placed here; it shows no buttons to join with\n"_s);
    after(
        "offline", [](Ward &ward) { ward.google.transport.setOnline(false); }, fires,
        u"! last 0 s ago; there is no network\n"_s);
    before(
        "no sound server",
        [](Ward &ward) { ward.desktop.sounds.current.serverError = u"Sound driver not available"_s; }, fires,
        u"! \"Glass\" would not be heard; the sound library says: Sound driver not available\n"_s);
    before(
        "no such sound", [](Ward &ward) { ward.desktop.sounds.current.hasSound = false; }, fires,
        u"! \"Glass\" is missing\n"_s);
    before(
        "no panel", [](Ward &ward) { ward.desktop.statusItem.current = {}; }, fires,
        u"! none shows the status item\n"_s);
    before(
        "no text in the panel",
        [](Ward &ward) { ward.desktop.statusItem.current.countdown = CountdownPlace::ToolTip; }, fires,
        u"! mate-panel shows the icon; the countdown is in its tool tip alone\n"_s);
    before(
        "keys of another program", [](Ward &ward) { ward.desktop.shortcuts.taken = { 1 }; }, fires,
        u"! join: ⇧⌘J is refused\n"_s);
    before(
        "a desktop that is still asking", [](Ward &ward) { ward.desktop.shortcuts.isHeld = true; }, fires,
        u"! join: no answer yet (X11)\n"_s);
    before(
        "no shortcuts at all",
        [](Ward &ward) { ward.desktop.shortcuts.backend = ShortcutBackend::Kind::None; }, fires,
        u"! this desktop takes none from programs\n"_s);
    before(
        "two actions with the same keys",
        [](Ward &ward) {
            Preferences preferences(ward.google.preferences);
            preferences.setEnableMeetControls(true);
            preferences.setHotkey(preferences.hotkey(HotkeyAction::join), HotkeyAction::meetHand);
        },
        fires, u"! join and meetHand have the same keys: ⇧⌘J\n"_s);
    before(
        "no browser for the controls",
        [](Ward &ward) { Preferences(ward.google.preferences).setEnableMeetControls(true); }, fires,
        u"! none is connected, which the Meet controls need\n"_s);
    before(
        "scripts switched off",
        [](Ward &ward) {
            ward.desktop.browser.current.connected = { u"Chromium"_s };
            ward.desktop.browser.current.isScriptingOff = true;
        },
        fires, u"! connected: Chromium, but \"Allow User Scripts\" is off\n"_s);
    before(
        "no helper", [](Ward &ward) { ward.desktop.helper.current = HelperCondition::Missing; }, fires,
        u"! the helper program is missing: calls open in the default browser\n"_s);
    before(
        "not with the session",
        [](Ward &ward) { Preferences(ward.google.preferences).setLaunchAtLogin(false); }, fires,
        u"✓ Kestrel does not start with it\n"_s);
}

void TestDoctor::namesEachFault()
{
    QFETCH(const Change, before);
    QFETCH(const Change, after);
    QFETCH(const QString, verdict);
    QFETCH(const QString, finding);
    Ward ward;
    before(ward);
    ward.start();
    after(ward);

    VerbResult result = ward.doctor();
    static const QRegularExpression wrapping(u"\n {10,}(?=[^ →✓!✗])"_s);
    result.output.replace(wrapping, u" "_s);
    QVERIFY2(result.output.startsWith(verdict), qPrintable(result.output));
    QVERIFY2(result.output.contains(u' ' + finding), qPrintable(result.output));
    // the exit code, the verdict and the findings agree
    const bool isBad = result.output.contains(u"  ✗ "_s);
    QCOMPARE(result.output.startsWith(u'✗'), isBad);
    QCOMPARE(result.exitCode, isBad ? ExitCode::Failed : ExitCode::Success);
}

void TestDoctor::tellsTheNextThreeAlerts()
{
    Ward ward;
    ward.events = { { u"a"_s, 60min }, { u"b"_s, 60min }, { u"c"_s, 23h } };
    ward.start();
    const QString text = ward.doctor().output;
    for (const QString &line : { u"✓ 09:25:00 NST (12:55:00 UTC), 5 min before 2 meetings\n"_s,
                                 u"✓ 09:29:00 NST (12:59:00 UTC), 1 min before 2 meetings\n"_s,
                                 u"✓ 2025-03-04 07:25:00 NST (10:55:00 UTC), 5 min before a meeting\n"_s })
        QVERIFY2(text.contains(line), qPrintable(text));
    QVERIFY2(!text.contains(u"  ! "_s), qPrintable(text));

    const QJsonArray alerts =
        QJsonDocument::fromJson(ward.doctor({ u"--json"_s }).output.toUtf8())["alerts"_L1].toArray();
    QCOMPARE(alerts.size(), 3);
    QCOMPARE(alerts[1].toObject(),
             (QJsonObject { { u"due"_s, u"2025-03-03T12:59:00.000Z"_s },
                            { u"start"_s, u"2025-03-03T13:00:00.000Z"_s },
                            { u"meetings"_s, 2 },
                            { u"kind"_s, u"oneMinute"_s } }));
}

void TestDoctor::showsATestAlert_data()
{
    QTest::addColumn<Change>("before");
    QTest::addColumn<QString>("finding");
    QTest::addColumn<int>("exitCode");
    const auto row = [](const char *name, const Change &before, const QString &finding, int exitCode) {
        QTest::newRow(name) << before << finding << exitCode;
    };
    row("a card", [](Ward &) { }, u"✓ shown as a card, 360×[0-9]+ at 1516,62\n"_s, ExitCode::Success);
    row(
        "a notification", [](Ward &ward) { ward.desktop.windows.placesWindows = false; },
        u"✓ shown as a notification\n"_s, ExitCode::Success);
    row(
        "nobody to show it",
        [](Ward &ward) {
            ward.desktop.windows.placesWindows = false;
            ward.desktop.notifications.isAvailable = false;
        },
        u"✗ the notification was not taken\n"_s, ExitCode::Failed);
    row(
        "no display", [](Ward &ward) { ward.desktop.screens.setFrames({}, {}); },
        u"✗ not shown: there is no display\n"_s, ExitCode::Failed);
}

void TestDoctor::showsATestAlert()
{
    QFETCH(const Change, before);
    QFETCH(const QString, finding);
    QFETCH(const int, exitCode);
    Ward ward;
    before(ward);
    ward.start();
    AlertPresenter &presenter = ward.delegate->environment().presenter();

    const VerbResult result = ward.doctor({ u"--test-alert"_s });
    QVERIFY2(result.output.contains(QRegularExpression(finding)), qPrintable(result.output));
    QCOMPARE(result.exitCode, exitCode);
    if (exitCode != ExitCode::Success)
        return;
    QCOMPARE(ward.desktop.sounds.played, QStringList { u"Glass"_s });
    QCOMPARE(presenter.activeIDs().size(), 1);
    auto *end = ward.delegate->doctor().findChild<QTimer *>();
    QVERIFY(end && end->isActive());
    end->setInterval(0); // its seconds, quickly
    QTRY_VERIFY(presenter.activeIDs().isEmpty());
}

void TestDoctor::leavesRealAlertsAlone()
{
    Ward ward;
    Preferences(ward.google.preferences).setStackSimultaneousAlerts(false);
    ward.events = { { u"real"_s, 3min } };
    ward.start();
    ward.desktop.alertTimer.fire();
    FakeGoogle::settle();
    const VerbResult result = ward.doctor({ u"--test-alert"_s });
    QVERIFY2(result.output.contains(u"✓ not shown, because 1 real alert is on the screen\n"_s),
             qPrintable(result.output));
    QCOMPARE(ward.delegate->environment().presenter().activeIDs(), QStringList { u"A:real"_s });
}

void TestDoctor::saysNothingPrivate()
{
    Ward ward;
    AccountRegistry(ward.google.preferences).remove(u"A"_s);
    const QString calendar = u"canary-calendar@example.com"_s;
    Preferences preferences(ward.google.preferences);
    for (const QString &id : { u"canary-well"_s, u"canary-ill"_s, u"canary-out"_s }) {
        ward.admit(id);
        preferences.setSelectedCalendarIDs({ id.contains("ill"_L1) ? u"ill"_s : calendar }, id);
    }
    ward.google.answerEvents(calendar, { { u"canary-title"_s } });
    ward.google.transport.answer(FakeGoogle::eventsPath(u"ill"_s), 500, "canary-answer");
    // the third one's token has to be renewed, which is refused
    const AccessToken old { u"canary-token"_s, ward.google.clock.now() - 1h };
    ward.google.secrets.secrets.insert(u"google.canary-out.access_token"_s, old.toJson());
    ward.google.transport.answer(tokenPath, 401, "canary-refusal");
    ward.start();

    for (const QStringList &options : { QStringList(), QStringList { u"--json"_s } }) {
        const QString text = ward.doctor(options).output;
        QVERIFY2(text.contains("account 2: never read; the last attempt failed: HTTP 500"_L1),
                 qPrintable(text));
        QVERIFY2(text.contains("account 3: not signed in any more (HTTP 401 from the sign-in server)"_L1),
                 qPrintable(text));
        QVERIFY2(text.contains("5 min before a meeting"_L1), qPrintable(text));
        for (const QString &secret : { u"canary"_s, u"@"_s, u"token of"_s, QDir::homePath() })
            QVERIFY2(!text.contains(secret, Qt::CaseInsensitive), qPrintable(secret + u" in "_s + text));
    }
}

} // namespace kestrel

QTEST_MAIN(kestrel::TestDoctor)
#include "TestDoctor.moc"
