#include "soak/BusyPerson.h"
#include "alerts/AlertCard.h"
#include "auth/PlayedBrowser.h"
#include "command/InstancePlace.h"
#include "platform/FloatingWindows.h"
#include "platform/Screens.h"
#include "platform/StatusItemHost.h"
#include <QCoro/QCoroTask>
#include <QDeadlineTimer>
#include <QDir>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTcpServer>
#include <QThread>
#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr int accounts = 5;
constexpr auto step = 4min;

quint16 freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    return probe.serverPort();
}

/// Nothing of the person's.
InstancePlace nowhere()
{
    InstancePlace place;
    place.dataFolder = QDir::tempPath();
    place.soundCache = QDir::tempPath();
    return place;
}

} // namespace

BusyPerson::BusyPerson(TimeLapse &lapse, int meetingsPerDay)
    : m_lapse(lapse)
    , m_google(m_clock, meetingsPerDay)
    , m_desktop(Desktop::make(true, nowhere()))
    , m_port(freePort())
{
    m_preferenceStore.setBoolean(u"popover.hasShownInitialAutoOpen.v1"_s, true);
    m_applications.locations.insert(u"com.google.Chrome"_s,
                                    u"/usr/share/applications/google-chrome.desktop"_s);
    m_opener.onOpen = [](const QUrl &url) {
        if (url.path().endsWith("/auth"_L1))
            comeBack(url, u"?code=a-code&state=STATE"_s);
    };
    m_language.apply(m_preferenceStore);
    m_panel.start();
    m_delegate = std::make_unique<AppDelegate>(m_preferenceStore, authServices(), desktopServices(),
                                               AppDelegate::Start { .bridgePort = m_port });
}

BusyPerson::~BusyPerson()
{
    m_client.reset();
    m_delegate.reset();
    turn();
}

AuthServices BusyPerson::authServices()
{
    const GoogleEndpoints endpoints { QUrl(u"https://accounts.example.com/o/oauth2/v2/auth"_s),
                                      QUrl(u"https://oauth2.example.com/token"_s),
                                      QUrl(u"https://oauth2.example.com/revoke"_s),
                                      QUrl(u"https://openid.example.com/v1/userinfo"_s),
                                      QUrl(u"https://calendar.example.com"_s) };
    return { m_secrets, m_google, m_opener, m_clock, endpoints, { u"client.example.com"_s, u"secret"_s },
             u"soak"_s };
}

DesktopServices BusyPerson::desktopServices()
{
    const DesktopServices real = m_desktop->services();
    return { m_applications, m_browser,       real.windows,    m_helper,     real.keyMonitor,
             m_loginItem,    m_notice,        m_notifications, real.screens, real.shortcuts,
             m_sounds,       real.statusItem, m_alertTimer,    real.theme,   real.scene };
}

int BusyPerson::chance(int below)
{
    return static_cast<int>(m_dice() % static_cast<unsigned>(below)); // a distribution may differ by library
}

void BusyPerson::turn(int turns)
{
    for (int i = 0; i < turns; ++i) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    countFrames();
}

template<typename Condition>
bool BusyPerson::await(const char *what, Condition condition)
{
    const QDeadlineTimer limit(60s);
    while (!condition()) {
        if (limit.hasExpired()) {
            m_trouble =
                u"%1: not within a minute, at minute %2"_s.arg(QLatin1StringView(what)).arg(m_deeds.minutes);
            return false;
        }
        turn(1);
        QThread::usleep(200);
    }
    return true;
}

void BusyPerson::countFrames()
{
    for (QWindow *window : QGuiApplication::topLevelWindows()) {
        auto *view = qobject_cast<QQuickView *>(window);
        if (!view || view->property("isCounted").toBool())
            continue;
        view->setProperty("isCounted", true);
        QObject::connect(view, &QQuickWindow::frameSwapped, view, [this] { ++m_deeds.frames; });
    }
}

QQuickView *BusyPerson::shownView(const char *property)
{
    for (QWindow *window : QGuiApplication::topLevelWindows()) {
        auto *view = qobject_cast<QQuickView *>(window);
        if (view && view->isVisible() && view->rootObject()
            && view->rootObject()->property(property).isValid())
            return view;
    }
    return nullptr;
}

void BusyPerson::press(QQuickView &view, Qt::Key key)
{
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &down);
    QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &up);
}

void BusyPerson::keepBusy(int minutes)
{
    Preferences &preferences = m_delegate->environment().preferences();
    preferences.setEnableMeetControls(true);
    preferences.setEnableJoinShortcut(true);
    preferences.setEnableStreamDeckBridge(true);
    turn();
    while (m_delegate->environment().registry().accounts().size() < accounts && m_trouble.isEmpty())
        signIn();
    for (int minute = 0; minute < minutes && m_trouble.isEmpty(); minute += int(step / 1min)) {
        passStep();
        answerCards();
        talkInTheCall();
        const auto isTime = [minute](int every, int at) { return minute % every == at; };
        if (isTime(20, 4))
            useAgenda();
        if (isTime(20, 8))
            useBridge();
        if (isTime(60, 12) || isTime(60, 24))
            useSettings();
        if (isTime(60, 20))
            changeAccounts();
        if (isTime(60, 40))
            changeTastes();
        if (isTime(60, 48))
            restartPanel();
        if (isTime(180, 56))
            speakAnotherLanguage();
        if (isTime(180, 116)) {
            (void)QCoro::waitFor(m_delegate->doctor().examine(true));
            ++m_deeds.examinations;
        }
    }
}

void BusyPerson::passStep()
{
    const Instant end = m_clock.now() + step;
    while (m_alertTimer.armed && *m_alertTimer.armed < end) {
        m_clock.setNow(std::max(m_clock.now(), *m_alertTimer.armed));
        m_alertTimer.fire();
        turn();
        for (const QString &id : m_delegate->environment().presenter().activeIDs()) {
            if (!m_cards.contains(id))
                ++m_deeds.alerts;
        }
        m_cards = m_delegate->environment().presenter().activeIDs();
    }
    m_clock.setNow(end);
    m_lapse.pass(step);
    turn();
    await("the refresh", [this] { return !m_delegate->environment().isRefreshing(); });
    m_cards = m_delegate->environment().presenter().activeIDs();
    forgetRecords();
    m_deeds.minutes += step / 1min;
}

void BusyPerson::signIn()
{
    if (const auto account = QCoro::waitFor(m_delegate->environment().google().signIn()); !account)
        m_trouble = u"sign-in: "_s + description(account.error());
    tellGoogle();
    ++m_deeds.signIns;
    turn();
}

void BusyPerson::tellGoogle()
{
    QStringList ids;
    for (const CalendarAccount &account : m_delegate->environment().registry().accounts())
        ids.append(account.id);
    m_google.setAccounts(ids);
}

void BusyPerson::signOut(const QString &accountID)
{
    if (!QCoro::waitFor(m_delegate->environment().google().signOut(accountID)))
        m_trouble = u"sign-out failed"_s;
    tellGoogle();
    ++m_deeds.signOuts;
    turn();
}

void BusyPerson::changeAccounts()
{
    const auto &all = m_delegate->environment().registry().accounts();
    signOut(all[chance(int(all.size()))].id);
    signIn();
}

void BusyPerson::answerCards()
{
    AlertPresenter &presenter = m_delegate->environment().presenter();
    while (presenter.activeIDs().size() > 3) {
        const QString id = presenter.activeIDs().first();
        QQuickView *view = chance(3) == 0 ? shownView("card") : nullptr;
        auto *card = view ? view->rootObject()->property("card").value<AlertCard *>() : nullptr;
        if (card && card->item()->canJoin()) {
            card->item()->join();
            ++m_deeds.joined;
        } else if (view && chance(4) == 0) {
            Q_EMIT m_desktop->services().windows.pressed({ 3, 900 });
            presenter.dismiss(id); // where presses elsewhere are not watched
            ++m_deeds.dismissed;
        } else {
            presenter.dismiss(id);
            ++m_deeds.dismissed;
        }
        turn();
    }
}

void BusyPerson::useAgenda()
{
    QQuickView *view = shownView("agenda");
    if (view) {
        press(*view, Qt::Key_Escape);
    } else if (m_delegate->showAgenda()) {
        ++m_deeds.agendas;
        view = shownView("agenda");
        await("the agenda", [view] { return view->isExposed(); });
        for (int i = 0; i < 3; ++i)
            press(*view, Qt::Key_Tab);
        press(*view, Qt::Key_Down);
    }
    turn();
}

void BusyPerson::useSettings()
{
    if (QQuickView *view = shownView("settings")) {
        view->close();
        turn();
        return;
    }
    if (!m_delegate->showSettings())
        return;
    ++m_deeds.settings;
    QQuickView *view = shownView("settings");
    await("the settings", [view] { return view->isExposed(); });
    auto *settings = view->rootObject()->property("settings").value<SettingsModel *>();
    for (const auto tab :
         { SettingsModel::Tab::Appearance, SettingsModel::Tab::Accounts, SettingsModel::Tab::Meetings,
           SettingsModel::Tab::Notifications, SettingsModel::Tab::About, SettingsModel::Tab::General }) {
        settings->setTab(tab);
        turn();
    }
}

void BusyPerson::talkInTheCall()
{
    const auto flag = [this] { return chance(2) == 0 ? u"true"_s : u"false"_s; };
    m_helper.release();
    if (chance(10) == 0)
        m_helper.scriptAnswer = std::unexpected(HelperError {});
    else if (chance(10) == 0)
        m_helper.scriptAnswer = HelperScriptReply { false, {}, {} };
    else
        m_helper.scriptAnswer = HelperScriptReply {
            true,
            uR"({"mic":%1,"cam":%2,"hand":%3,"share":%4,"found":true})"_s.arg(flag(), flag(), flag(), flag()),
            {}
        };
    if (chance(4) == 0) {
        const auto &all = hotkeyActions();
        const HotkeyAction action = all[static_cast<std::size_t>(chance(int(all.size())))].action;
        m_delegate->perform(action);
        ++m_deeds.commands;
    }
    if (chance(50) == 0)
        m_helper.isHeld = true; // a browser that hangs for a minute
    turn();
}

void BusyPerson::useBridge()
{
    leaveBridge();
    m_client = std::make_unique<QWebSocket>();
    bool isGreeted = false;
    QObject::connect(m_client.get(), &QWebSocket::textMessageReceived, m_client.get(),
                     [&isGreeted] { isGreeted = true; });
    m_client->open(QUrl(u"ws://127.0.0.1:%1"_s.arg(m_port)));
    await("the bridge's greeting", [&isGreeted] { return isGreeted; });
    m_client->disconnect(m_client.get());
    m_client->sendTextMessage(chance(3) == 0 ? u"{nonsense"_s : uR"({"cmd":"meetHand"})"_s);
    ++m_deeds.clients;
    turn();
}

void BusyPerson::leaveBridge()
{
    if (!m_client)
        return;
    if (chance(2) == 0) {
        m_client->abort();
    } else {
        m_client->close();
        await("the bridge's farewell",
              [this] { return m_client->state() == QAbstractSocket::UnconnectedState; });
    }
    m_client.reset();
    turn();
}

void BusyPerson::restartPanel()
{
    m_panel.stop();
    turn();
    m_panel.start();
    await("the item in the new panel", [this] { return m_panel.items() > 0; });
    ++m_deeds.panels;
}

void BusyPerson::speakAnotherLanguage()
{
    Preferences &preferences = m_delegate->environment().preferences();
    const bool isSpanish = m_language.current() == "es"_L1;
    preferences.setLanguageOverride(isSpanish ? Preferences::LanguageCode::En
                                              : Preferences::LanguageCode::Es);
    if (m_language.apply(m_preferenceStore))
        m_delegate->retranslate();
    ++m_deeds.languages;
    turn();
}

void BusyPerson::changeTastes()
{
    Preferences &preferences = m_delegate->environment().preferences();
    preferences.setReduceTransparency(!preferences.reduceTransparency());
    preferences.setStackSimultaneousAlerts(chance(4) != 0);
    preferences.setClickOutsideToDismiss(chance(2) == 0);
    preferences.setAutoDismissSeconds(chance(2) == 0 ? 0 : 90);
    preferences.setLeadTimeMinutes(2 + chance(8));
    preferences.setScreenPosition(Preferences::screenPositions[static_cast<std::size_t>(chance(6))]);
    preferences.setEnableStreamDeckBridge(chance(2) == 0);
    turn();
    leaveBridge();
    preferences.setEnableStreamDeckBridge(true);
    turn();
}

/// The fakes keep lists for tests to look at; here they would be the leak.
void BusyPerson::forgetRecords()
{
    m_deeds.polls += m_helper.executed.size();
    m_secrets.calls.clear();
    m_secrets.items.clear();
    m_opener.opened.clear();
    m_helper.opened.clear();
    m_helper.executed.clear();
    m_helper.closed.clear();
    m_notice.asked.clear();
    m_notifications.shown.clear();
    m_sounds.played.clear();
}

Figures BusyPerson::rest()
{
    AppEnvironment &environment = m_delegate->environment();
    Preferences &preferences = environment.preferences();
    m_helper.release();
    leaveBridge();
    while (!environment.registry().accounts().isEmpty() && m_trouble.isEmpty())
        signOut(environment.registry().accounts().first().id);
    preferences.setEnableMeetControls(false);
    preferences.setEnableJoinShortcut(false);
    preferences.setEnableStreamDeckBridge(false);
    preferences.setReduceTransparency(false);
    preferences.setLanguageOverride(Preferences::LanguageCode::En);
    if (m_language.apply(m_preferenceStore))
        m_delegate->retranslate();
    environment.presenter().dismissAll();
    if (QQuickView *view = shownView("settings"))
        view->close();
    // the agenda as it is without accounts: its cards and rows are gone
    if (!m_delegate->showAgenda())
        m_trouble = u"no agenda"_s;
    if (QQuickView *view = shownView("agenda")) {
        await("the agenda", [view] { return view->isExposed(); });
        m_lapse.pass(1min);
        turn(50);
        qmlEngine(view->rootObject())->collectGarbage();
        press(*view, Qt::Key_Escape);
    }
    // what still runs down by the machine's clock: fades, and the answers of servers
    constexpr int enoughAlike = 20;
    qsizetype last = -1;
    int alike = 0;
    await("rest", [&] {
        m_lapse.pass(1min);
        turn(4);
        QThread::msleep(10);
        const qsizetype now = TimeLapse::objects() * 1000 + TimeLapse::timers();
        alike = std::exchange(last, now) == now ? alike + 1 : 0;
        return alike >= enoughAlike;
    });
    m_cards.clear();
    forgetRecords();
    Figures figures = Figures::now();
    figures.alerts = m_deeds.alerts;
    return figures;
}

} // namespace kestrel
