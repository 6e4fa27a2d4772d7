#include "app/Doctor.h"
#include "app/AgendaText.h"
#include "app/AppEnvironment.h"
#include "base/StartTask.h"
#include "hotkeys/Hotkey.h"
#include "hotkeys/HotkeyDispatcher.h"
#include "platform/FloatingWindows.h"
#include "platform/HttpTransport.h"
#include "platform/LoginItem.h"
#include "platform/Screens.h"
#include "platform/StatusItemHost.h"
#include "platform/WakeTimer.h"
#include "streamdeck/StreamDeckBridge.h"
#include "ui/Theme.h"
#include <QCoro/QCoroSignal>
#include <QCoro/QCoroTimer>
#include <QDateTime>
#include <QPointer>
#include <QSysInfo>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

using enum Finding::State;

constexpr qsizetype alertsShown = 3;
constexpr auto testAlertStays = 15s;
const auto testAlertID = u"app.kestrel.test-alert"_s;

// the sections, in their order
const auto testSection = u"Test alert"_s;
const auto alertsSection = u"Next alerts"_s;
const auto timerSection = u"Timer"_s;
const auto surfaceSection = u"Surface"_s;
const auto soundSection = u"Sound"_s;
const auto accountsSection = u"Accounts"_s;
const auto refreshSection = u"Refresh"_s;
const auto keyringSection = u"Keyring"_s;
const auto panelSection = u"Panel"_s;
const auto shortcutsSection = u"Shortcuts"_s;
const auto browserSection = u"Browser"_s;
const auto bridgeSection = u"Stream Deck"_s;
const auto systemSection = u"System"_s;

QString agoText(Instant then, Instant now)
{
    const auto passed = std::max(now - then, Instant::duration::zero());
    if (passed < 2min)
        return u"%1 s ago"_s.arg(std::chrono::floor<std::chrono::seconds>(passed).count());
    if (passed < 2h)
        return u"%1 min ago"_s.arg(std::chrono::floor<std::chrono::minutes>(passed).count());
    return u"%1 h ago"_s.arg(std::chrono::floor<std::chrono::hours>(passed).count());
}

QString zoneText(Instant instant)
{
    return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count()).timeZoneAbbreviation();
}

QString placeText(const QRect &place)
{
    return u"%1×%2 at %3,%4"_s.arg(place.width()).arg(place.height()).arg(place.x()).arg(place.y());
}

QLatin1StringView cornerText(Preferences::ScreenPosition position)
{
    using enum Preferences::ScreenPosition;
    switch (position) {
    case TopLeft:
        return "top left"_L1;
    case TopCenter:
        return "top centre"_L1;
    case TopRight:
        return "top right"_L1;
    case BottomLeft:
        return "bottom left"_L1;
    case BottomCenter:
        return "bottom centre"_L1;
    case BottomRight:
        return "bottom right"_L1;
    }
    std::unreachable();
}

QString windowingText(const WindowingCondition &windowing, bool isComposited)
{
    using enum WindowingCondition::System;
    QStringList parts { windowing.system == XWayland ? u"XWayland"_s : u"X11"_s };
    parts << (windowing.windowManager.isEmpty() ? u"no window manager"_s : windowing.windowManager)
          << (isComposited ? u"a compositor"_s : u"no compositor"_s);
    return parts.join(u", "_s);
}

QString keysText(const ShortcutBackend::Shortcut &shortcut)
{
    return Hotkey { shortcut.keyCode, shortcut.modifiers }.displayParts().join(QString());
}

QString unlessEmpty(const QString &text, const QString &otherwise)
{
    return text.isEmpty() ? otherwise : text;
}

} // namespace

/// Lives until the last answer has come, whether or not anybody still waits for it.
struct Doctor::Inquiry
{
    Answers answers;
    int open = 0;
    QTimer deadline;
};

Doctor::Doctor(const Patient &patient)
    : m_patient(patient)
{
    m_testAlertEnd.setSingleShot(true);
    connect(&m_testAlertEnd, &QTimer::timeout, this,
            [this] { m_patient.environment.presenter().dismiss(testAlertID); });
}

QCoro::Task<DoctorReport> Doctor::examine(bool withTestAlert)
{
    const QPointer self(this);
    std::optional<Finding> test;
    std::optional<QRect> place;
    if (withTestAlert) {
        test = presentTestAlert();
        if (!test)
            place = co_await testCardPlace();
    }
    const Answers answers = self ? co_await ask() : Answers();
    if (self && !isTimerRight()) {
        // a plan may be under way: what is posted by now comes before a timer
        QTimer turn;
        turn.setSingleShot(true);
        turn.start(0);
        co_await turn;
    }
    if (!self)
        co_return DoctorReport();

    DoctorReport report;
    report.time = m_patient.environment.clock().now();
    QList<Finding> &findings = report.findings;
    if (withTestAlert)
        findings += test ? *test : testAlertFinding(place);
    examineAlerts(report);
    findings += timer(answers, report.time);
    findings += surface(answers);
    findings += sound(answers);
    findings += keyring(answers);
    examineAccounts(answers, report);
    findings += refreshing(report.time);
    findings += panel();
    examineShortcuts(report);
    examineBrowser(answers, report);
    if (auto listening = bridge())
        findings += *listening;
    findings += sessionFinding(m_patient.desktop.loginItem.state(),
                               !m_patient.environment.preferences().launchAtLogin());
    findings +=
        Finding { systemSection, Good,
                  u"Kestrel %1, Qt %2, %3, %4"_s.arg(
                      QStringLiteral(KESTREL_VERSION), QString::fromLatin1(qVersion()),
                      QSysInfo::prettyProductName(),
                      unlessEmpty(qEnvironmentVariable("XDG_CURRENT_DESKTOP"), u"no desktop named"_s)) };
    report.verdict = verdict(report);
    co_return report;
}

template<typename T>
QCoro::Task<void> Doctor::await(std::shared_ptr<Inquiry> inquiry, std::optional<T> Answers::*answer,
                                QCoro::Task<T> question)
{
    inquiry->answers.*answer = co_await std::move(question);
    if (--inquiry->open == 0)
        inquiry->deadline.start(0);
}

QCoro::Task<Doctor::Answers> Doctor::ask() const
{
    const auto inquiry = std::make_shared<Inquiry>();
    inquiry->deadline.setSingleShot(true);
    const auto put = [&inquiry](auto answer, auto question) {
        ++inquiry->open;
        startTask("a question of the doctor", await(inquiry, answer, std::move(question)));
    };
    const DesktopServices &desktop = m_patient.desktop;
    const auto sound = m_patient.environment.preferences().alertSound();
    put(&Answers::secrets, m_patient.secrets.condition());
    put(&Answers::sound, desktop.sounds.condition(Preferences::rawValue(sound)));
    put(&Answers::notifications, desktop.notifications.service());
    put(&Answers::browser, desktop.browser.state());
    put(&Answers::helper, desktop.helper.condition());
    put(&Answers::hearsOfSleep, desktop.alertTimer.hearsOfSleep());
    inquiry->deadline.start(inquiry->open == 0 ? 0ms : m_patient.patience);
    co_await inquiry->deadline;
    co_return Answers(inquiry->answers);
}

std::optional<Finding> Doctor::presentTestAlert()
{
    AlertPresenter &presenter = m_patient.environment.presenter();
    presenter.dismiss(testAlertID);
    if (const auto real = presenter.activeIDs(); !real.isEmpty())
        return Finding { testSection, Good,
                         u"not shown, because %1 on the screen"_s.arg(
                             countOf(real.size(), "real alert is"_L1, "real alerts are"_L1)) };
    const Preferences &preferences = m_patient.environment.preferences();
    Meeting meeting; // without a link: nobody is led into a call that is none
    meeting.id = testAlertID;
    meeting.title = qtTrId("doctor.test_alert");
    meeting.start = m_patient.environment.clock().now()
        + std::chrono::minutes(std::clamp<qint64>(preferences.leadTimeMinutes(), 1, 60));
    meeting.end = meeting.start + 30min;
    presenter.present(meeting);
    if (!m_patient.desktop.screens.mainVisibleFrame())
        return Finding { testSection, Bad, u"not shown: there is no display"_s };
    m_testAlertEnd.start(testAlertStays);
    return {};
}

QCoro::Task<std::optional<QRect>> Doctor::testCardPlace() const
{
    const QPointer presenter(&m_patient.environment.presenter());
    if (m_patient.desktop.windows.canPlaceWindows() && !presenter->placeOf(testAlertID))
        co_await qCoro(presenter.data(), &AlertPresenter::drawn, m_patient.patience);
    co_return presenter ? presenter->placeOf(testAlertID) : std::optional<QRect>();
}

Finding Doctor::testAlertFinding(const std::optional<QRect> &place) const
{
    if (place)
        return { testSection, Good, u"shown as a card, %1"_s.arg(placeText(*place)) };
    if (m_patient.desktop.windows.canPlaceWindows())
        return { testSection, Bad, u"its card was not drawn"_s };
    // a notification that nobody took is gone by now
    if (m_patient.environment.presenter().activeIDs().contains(testAlertID))
        return { testSection, Good, u"shown as a notification"_s };
    return { testSection, Bad, u"the notification was not taken"_s };
}

bool Doctor::isTimerRight() const
{
    const auto fires = m_patient.environment.scheduler().upcomingFires(1);
    const auto armed = m_patient.desktop.alertTimer.armedFor();
    return armed == (fires.isEmpty() ? std::nullopt : std::optional(fires.first().date));
}

void Doctor::examineAlerts(DoctorReport &report) const
{
    const auto fires = m_patient.environment.scheduler().upcomingFires(alertsShown);
    for (const AlertScheduler::Fire &fire : fires) {
        const Instant start = fire.meetings.isEmpty() ? fire.date : fire.meetings.first().start;
        report.alerts.append({ fire.date, start, fire.meetings.size(), fire.isPrimary });
        const auto ahead = std::chrono::round<std::chrono::minutes>(start - fire.date).count();
        const QString zone = zoneText(fire.date);
        const QString utc =
            zone == "UTC"_L1 ? QString() : u" (%1 UTC)"_s.arg(toInternetDateTime(fire.date).sliced(11, 8));
        const QString meetings = fire.meetings.size() == 1
            ? u"a meeting"_s
            : countOf(fire.meetings.size(), "meeting"_L1, "meetings"_L1);
        report.findings +=
            Finding { alertsSection, Good,
                      u"%1 %2%3, %4 min before %5"_s.arg(clockText(fire.date, report.time), zone, utc,
                                                         QString::number(ahead), meetings) };
    }
    if (fires.isEmpty())
        report.findings += Finding { alertsSection, Good, u"none in the next 24 hours"_s };
}

Finding Doctor::timer(const Answers &answers, Instant now) const
{
    const auto fires = m_patient.environment.scheduler().upcomingFires(1);
    const auto armed = m_patient.desktop.alertTimer.armedFor();
    const QString waking = answers.hearsOfSleep.value_or(false)
        ? u"logind and the kernel tell of a wake-up"_s
        : u"the kernel alone tells of a wake-up, no logind"_s;
    if (isTimerRight())
        return { timerSection, Good,
                 (armed ? u"armed for %1; "_s.arg(clockText(*armed, now)) : u"waits for nothing; "_s)
                     + waking };
    const QString planned = fires.isEmpty() ? u"nothing"_s : clockText(fires.first().date, now);
    return { timerSection, Bad,
             armed ? u"armed for %1 instead of %2"_s.arg(clockText(*armed, now), planned)
                   : u"not armed for %1"_s.arg(planned),
             u"Start Kestrel anew, and report this as a bug."_s };
}

Finding Doctor::surface(const Answers &answers) const
{
    const DesktopServices &desktop = m_patient.desktop;
    const auto frame = desktop.screens.mainVisibleFrame();
    if (!frame)
        return { surfaceSection, Bad, u"there is no display"_s, u"Start Kestrel inside your desktop."_s };
    if (desktop.windows.canPlaceWindows())
        return { surfaceSection, Good,
                 u"cards at the %1 of %2 (%3)"_s.arg(
                     cornerText(m_patient.environment.preferences().screenPosition()), placeText(*frame),
                     windowingText(desktop.windows.condition(), desktop.theme.isComposited())) };
    if (!answers.notifications)
        return { surfaceSection, Bad, u"the notification service does not answer"_s };
    const auto &service = *answers.notifications;
    if (!service)
        return { surfaceSection, Bad, u"no card can be placed here, and nobody shows notifications"_s,
                 u"Start a notification service (mako, dunst …), or XWayland."_s };
    const QString text = u"notifications through %1 %2, since no card can be placed here"_s.arg(
        service->name, service->version);
    if (!service->capabilities.contains("actions"_L1))
        return { surfaceSection, Warning, text + u"; it shows no buttons to join with"_s };
    return { surfaceSection, Good, text };
}

Finding Doctor::sound(const Answers &answers) const
{
    const Preferences &preferences = m_patient.environment.preferences();
    const QString name = Preferences::rawValue(preferences.alertSound());
    if (!preferences.playSoundOnAlert())
        return { soundSection, Good, u"switched off in the settings"_s };
    if (!answers.sound)
        return { soundSection, Warning, u"the sound server does not answer"_s };
    if (!answers.sound->hasSound)
        return { soundSection, Warning, u"\"%1\" is missing"_s.arg(name), u"Install Kestrel anew."_s };
    if (!answers.sound->serverError.isEmpty())
        return { soundSection, Warning,
                 u"\"%1\" would not be heard; the sound library says: %2"_s.arg(name,
                                                                                answers.sound->serverError) };
    return { soundSection, Good, u"\"%1\", and a sound server to play it"_s.arg(name) };
}

void Doctor::examineAccounts(const Answers &answers, DoctorReport &report) const
{
    GoogleProvider &google = m_patient.environment.google();
    const auto accounts = m_patient.environment.registry().accounts(GoogleProvider::providerID);
    const bool areSecretsOpen = answers.secrets && answers.secrets->status == SecretStatus::Success;
    if (accounts.isEmpty())
        report.findings +=
            Finding { accountsSection, Bad, u"none is connected"_s, u"Sign in with: kestrel accounts add"_s };
    if (!accounts.isEmpty() && !m_patient.hasClient)
        report.findings += Finding { accountsSection, Bad, u"there is no Google client to sign in with"_s,
                                     u"docs/google-client.md"_s };
    for (int number = 1; const CalendarAccount &account : accounts) {
        const QString name = u"account %1: "_s.arg(number++);
        const GoogleOAuth &oauth = google.oauth(account.id);
        const TokenHealth &token = oauth.tokenHealth();
        const ReadHealth read = google.readHealth(account.id);
        const QString lastGood =
            read.lastGood ? u"read %1"_s.arg(agoText(*read.lastGood, report.time)) : u"never read"_s;
        Finding finding { accountsSection, Bad, {} };
        if (!oauth.isSignedIn() && !areSecretsOpen) {
            finding.text = u"its sign-in is in the keyring"_s;
        } else if (!oauth.isSignedIn()) {
            finding.text = u"not signed in"_s
                + (token.failure.isEmpty() ? QString() : u" any more (%1)"_s.arg(token.failure));
            finding.advice = u"Sign in again: in the settings, or kestrel accounts sign-in ADDRESS"_s;
        } else if (read.failed > 0 && read.failed == read.calendars) {
            finding.text = u"%1; the last attempt failed: %2"_s.arg(lastGood, read.failure);
        } else if (read.failed > 0) {
            finding.state = Warning;
            finding.text = u"%1 of %2 could not be read: %3"_s.arg(
                QString::number(read.failed), countOf(read.calendars, "calendar"_L1, "calendars"_L1),
                read.failure);
        } else if (!read.lastGood) {
            finding.text = u"signed in, not read yet"_s;
        } else {
            finding.state = Good;
            finding.text =
                u"signed in, %1 %2"_s.arg(countOf(read.calendars, "calendar"_L1, "calendars"_L1), lastGood);
            if (token.expires)
                finding.text += u", access token good until %1"_s.arg(clockText(*token.expires, report.time));
            if (!token.failure.isEmpty()) {
                finding.state = Warning;
                finding.text += u", could not be renewed: %1"_s.arg(token.failure);
            }
        }
        finding.text.prepend(name);
        report.findings += finding;
    }
}

Finding Doctor::refreshing(Instant now) const
{
    const AppEnvironment &environment = m_patient.environment;
    constexpr auto late = 3 * AppEnvironment::autoRefreshInterval;
    const auto last = environment.lastRefresh();
    const QString text = last ? u"last %1"_s.arg(agoText(*last, now)) : u"none yet"_s;
    if (!m_patient.transport.isOnline())
        return { refreshSection, Warning, text + u"; there is no network"_s };
    if (last && now - *last > late)
        return { refreshSection, Bad, text + u", though every minute is due"_s,
                 u"kestrel refresh; if that does not end, start Kestrel anew."_s };
    return { refreshSection, Good, text + u", every minute"_s };
}

Finding Doctor::keyring(const Answers &answers) const
{
    if (!answers.secrets)
        return { keyringSection, Bad, u"the secret service does not answer"_s };
    const SecretStoreCondition &secrets = *answers.secrets;
    const bool isFile = secrets.place == SecretStoreCondition::Place::File;
    const QString program = secrets.program.isEmpty() ? QString() : u" (%1)"_s.arg(secrets.program);
    switch (secrets.status) {
    case SecretStatus::Success:
        return { keyringSection, Good,
                 isFile ? u"a file instead, which can be read"_s : u"open"_s + program };
    case SecretStatus::Locked:
        return { keyringSection, Bad, u"locked"_s + program,
                 u"Unlock it: without its tokens Kestrel reads no calendar."_s };
    case SecretStatus::Unavailable:
        return { keyringSection, Bad, u"none answers"_s, u"docs/secrets.md says what to install."_s };
    default:
        return { keyringSection, Bad,
                 isFile ? u"the file in its place cannot be read"_s : u"it fails"_s + program,
                 u"docs/secrets.md"_s };
    }
}

Finding Doctor::panel() const
{
    const StatusItemCondition item = m_patient.desktop.statusItem.condition();
    switch (item.host) {
    case StatusItemCondition::Host::None:
        return { panelSection, Warning, u"none shows the status item"_s,
                 u"docs/panels.md says what your desktop needs."_s };
    case StatusItemCondition::Host::Tray:
        return { panelSection, Good, u"an XEmbed tray shows the countdown beside the icon"_s };
    case StatusItemCondition::Host::Panel:
        break;
    }
    const QString name = unlessEmpty(item.program, u"a panel"_s);
    switch (item.countdown) {
    case CountdownPlace::Label:
        return { panelSection, Good, name + u" shows the countdown as text"_s };
    case CountdownPlace::Icon:
        return { panelSection, Good, name + u" shows the countdown in the icon"_s };
    case CountdownPlace::ToolTip:
        return { panelSection, Warning, name + u" shows the icon; the countdown is in its tool tip alone"_s };
    }
    std::unreachable();
}

void Doctor::examineShortcuts(DoctorReport &report) const
{
    using State = HotkeyRegistration::State;
    const auto registrations = m_patient.hotkeys.registrations();
    const bool isPortal = m_patient.hotkeys.backend() == ShortcutBackend::Kind::Portal;
    const QString backend = isPortal                                     ? u"desktop portal"_s
        : m_patient.hotkeys.backend() == ShortcutBackend::Kind::X11Grabs ? u"X11"_s
                                                                         : QString();
    if (registrations.isEmpty()) {
        report.findings += Finding { shortcutsSection, Good, u"none is switched on"_s };
        return;
    }
    if (backend.isEmpty()) {
        report.findings += Finding { shortcutsSection, Warning, u"this desktop takes none from programs"_s,
                                     u"Bind the command line to keys of your desktop: kestrel join"_s };
        return;
    }
    QStringList registered;
    for (const HotkeyRegistration &each : registrations) {
        const ShortcutBackend::Shortcut &own = each.shortcut;
        const auto twin = std::ranges::find_if(registrations, [&own](const HotkeyRegistration &other) {
            return other.shortcut.id != own.id && other.shortcut.keyCode == own.keyCode
                && other.shortcut.modifiers == own.modifiers;
        });
        if (twin != registrations.end() && own.id < twin->shortcut.id)
            report.findings += Finding { shortcutsSection, Warning,
                                         u"%1 and %2 have the same keys: %3"_s.arg(
                                             own.name, twin->shortcut.name, keysText(own)),
                                         u"Give one of them other keys in the settings."_s };
        if (each.state == State::Registered) {
            registered += own.name;
        } else if (each.state == State::Waiting) {
            report.findings +=
                Finding { shortcutsSection, Warning, u"%1: no answer yet (%2)"_s.arg(own.name, backend) };
        } else if (twin == registrations.end()) {
            report.findings +=
                Finding { shortcutsSection, Warning, u"%1: %2 is refused"_s.arg(own.name, keysText(own)),
                          isPortal ? u"Look into your desktop's own settings for shortcuts."_s
                                   : u"Another program has these keys; choose others in the settings."_s };
        }
    }
    if (!registered.isEmpty())
        report.findings += Finding { shortcutsSection, Good,
                                     u"%1 registered (%2): %3"_s.arg(QString::number(registered.size()),
                                                                     backend, registered.join(u", "_s)) };
}

void Doctor::examineBrowser(const Answers &answers, DoctorReport &report) const
{
    const auto add = [&report](Finding::State state, const QString &text, const QString &advice = {}) {
        report.findings += Finding { browserSection, state, text, advice };
    };
    if (answers.helper == HelperCondition::Missing)
        add(Warning, u"the helper program is missing: calls open in the default browser"_s,
            u"Install Kestrel anew."_s);
    const bool isWanted = m_patient.environment.preferences().enableMeetControls();
    if (!answers.browser)
        add(Warning, u"the connected browsers do not answer"_s);
    else if (answers.browser->isOwnProfileOpen)
        add(Good, u"connected: a profile of Kestrel's own"_s);
    else if (answers.browser->isScriptingOff)
        add(Warning,
            u"connected: %1, but \"Allow User Scripts\" is off"_s.arg(
                answers.browser->connected.join(u", "_s)),
            u"kestrel browser status"_s);
    else if (!answers.browser->connected.isEmpty())
        add(Good, u"connected: %1"_s.arg(answers.browser->connected.join(u", "_s)));
    else if (!isWanted)
        add(Good, u"none is connected; the Meet controls, which need one, are off"_s);
    else if (answers.browser->isInstalled)
        add(Warning, u"none is connected, which the Meet controls need"_s, u"kestrel browser status"_s);
    else
        add(Warning, u"none is prepared for the Meet controls"_s, u"kestrel browser install"_s);
}

std::optional<Finding> Doctor::bridge() const
{
    if (!m_patient.environment.preferences().enableStreamDeckBridge())
        return {};
    if (m_patient.bridge.isListening())
        return Finding { bridgeSection, Good, u"the bridge listens"_s };
    return Finding { bridgeSection, Warning, u"the bridge does not listen"_s,
                     u"Another program has its port."_s };
}

QString Doctor::verdict(const DoctorReport &report) const
{
    const auto badOf = [&report](const QString &section) {
        const auto found = std::ranges::find_if(report.findings, [&section](const Finding &finding) {
            return finding.state == Bad && (section.isEmpty() || finding.section == section);
        });
        return found == report.findings.end() ? nullptr : &*found;
    };
    const auto reason = [](const Finding &finding) {
        return finding.section.toLower() + u": "_s + finding.text;
    };
    if (const Finding *unseen = badOf(surfaceSection))
        return u"Your next alert will not be seen: %1."_s.arg(unseen->text);
    if (const Finding *late = badOf(timerSection))
        return u"Your next alert will not fire: the timer is %1."_s.arg(late->text);
    const Finding *bad = badOf({});
    if (report.alerts.isEmpty())
        return bad ? u"No alert can be planned (%1)."_s.arg(reason(*bad))
                   : u"No alert is planned: no meeting of the next 24 hours has one to come."_s;
    const Instant due = report.alerts.first().due;
    const QString when = u"%1 (%2)"_s.arg(clockText(due, report.time), untilText(due, report.time));
    if (bad)
        return u"Your next alert is planned for %1, but something stands in the way (%2)."_s.arg(
            when, reason(*bad));
    return u"Your next alert fires at %1."_s.arg(when);
}

} // namespace kestrel
