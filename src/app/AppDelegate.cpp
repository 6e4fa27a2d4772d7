#include "app/AppDelegate.h"
#include "base/Log.h"
#include "menubar/MeetingChoice.h"
#include "platform/Notifications.h"
#include "platform/PreferenceStore.h"
#include "platform/Screens.h"
#include "platform/SecretStore.h"
#include "platform/StatusItemHost.h"
#include "platform/WakeTimer.h"
#include "ui/QuickScene.h"
#include "ui/Theme.h"
#include <QTimer>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

void qml_register_types_Kestrel_App();

namespace kestrel {

namespace {

constexpr auto firstRunKey = "popover.hasShownInitialAutoOpen.v1"_L1;
constexpr auto signedOutKey = "signed_out"_L1;
constexpr auto secretsKey = "keyring.missing"_L1;
constexpr auto unsavedKey = "preferences.unsaved"_L1;
constexpr auto saidTrayIsMissingKey = "statusItem.saidTrayIsMissing.v1"_L1;

// the linker drops what nobody names
[[gnu::used]] void (*const keepModule)() = &qml_register_types_Kestrel_App;

} // namespace

AppDelegate::AppDelegate(PreferenceStore &preferenceStore, const AuthServices &services,
                         const DesktopServices &desktop, const Start &start)
    : m_preferenceStore(preferenceStore)
    , m_bridgePort(start.bridgePort)
    , m_environment(preferenceStore, services, desktop)
    , m_agenda(m_environment.store(), m_environment.registry(), m_environment.preferences(), m_environment,
               m_environment.opener(), m_environment.clock())
    , m_onboarding(m_environment.google(), start.missingClient)
    , m_popover(desktop.scene, desktop.windows, desktop.screens, m_agenda,
                { QUrl(u"qrc:/qt/qml/Kestrel/App/OnboardingView.qml"_s), &m_onboarding })
    , m_menuBar(m_environment.store(), m_environment.preferences(), m_environment.meetState(),
                m_environment.clock(), desktop.statusItem, m_popover)
    , m_hotkeys(desktop.shortcuts)
    , m_hud(desktop.scene, desktop.windows, desktop.screens, desktop.theme)
    , m_meetControls(m_environment.preferences(), m_environment.meetState(), desktop.helper, m_hotkeys, m_hud,
                     desktop.notice, preferenceStore, [this] { showAgenda(); })
    , m_settings({ m_environment.preferences(), m_environment.registry(), m_environment.google(),
                   m_environment, m_environment.opener(), m_environment.clock(), desktop.sounds,
                   desktop.loginItem, desktop.browser, m_hotkeys, desktop.keyMonitor, start.missingClient })
    , m_settingsWindow(desktop.scene, desktop.screens, m_settings)
    , m_doctor({ m_environment, services.secrets, services.transport, desktop, m_hotkeys, m_bridge,
                 start.missingClient.isEmpty(), start.doctorPatience })
{
    Preferences &preferences = m_environment.preferences();
    setLaunchAtLogin(preferences.launchAtLogin(), desktop.loginItem);
    const auto followTransparency = [&preferences, &theme = desktop.theme] {
        theme.setReducesTransparency(preferences.reduceTransparency());
    };
    followTransparency();
    connect(&preferences, &Preferences::changed, this, followTransparency);

    // what is shown of the time is made by timers that stand still while the machine sleeps
    connect(&desktop.alertTimer, &WakeTimer::clockJumped, &m_menuBar, &MenuBarController::updateTitle);
    connect(&desktop.alertTimer, &WakeTimer::clockJumped, &m_agenda, &AgendaModel::evaluateIfActive);

    connect(&m_menuBar, &MenuBarController::joinRequested, this, &AppDelegate::joinNextMeeting);
    connect(&m_menuBar, &MenuBarController::refreshRequested, &m_environment, &AppEnvironment::startRefresh);
    connect(&m_menuBar, &MenuBarController::quitRequested, this, &QCoreApplication::quit,
            Qt::QueuedConnection);
    connect(&m_menuBar, &MenuBarController::settingsRequested, this, &AppDelegate::showSettings);
    connect(&m_menuBar, &MenuBarController::accountsRequested, this, &AppDelegate::showAccounts);
    connect(&m_agenda, &AgendaModel::accountsRequested, this, &AppDelegate::showAccounts);
    connect(&m_agenda, &AgendaModel::settingsRequested, this, &AppDelegate::showSettings);
    connect(&m_agenda, &AgendaModel::quitRequested, this, &QCoreApplication::quit, Qt::QueuedConnection);

    connect(&desktop.statusItem, &StatusItemHost::unavailable, this,
            [this, &notifications = desktop.notifications](const QString &message) {
                sayTrayIsMissing(message, notifications);
            });

    connect(&m_environment, &RefreshControl::signedOutAccountsChanged, this,
            [this, &notifications = desktop.notifications] { saySignedOut(notifications); });
    connect(&desktop.notifications, &Notifications::actionChosen, this, [this](const QString &key) {
        if (key == signedOutKey)
            showAccounts();
    });
    connect(&preferences, &Preferences::unsavedInChanged, this,
            [this, &notifications = desktop.notifications] { sayWhatIsUnsaved(notifications); });
    m_secretsPatience.setInterval(start.secretsPatience);
    followSecrets(services.secrets, desktop.notifications);

    showOnFirstRun(start.isJustInstalled);
    m_bridge.onCommand = [this](HotkeyAction action) { m_meetControls.dispatch(action); };
    m_bridge.stateProvider = [this] { return MeetStateSnapshot::of(m_environment.meetState()); };
    const MeetState &state = m_environment.meetState();
    for (const auto changed :
         { &MeetState::inMeetingChanged, &MeetState::micOnChanged, &MeetState::cameraOnChanged,
           &MeetState::handRaisedChanged, &MeetState::sharingChanged })
        connect(&state, changed, this, &AppDelegate::broadcastLater);
    applyPreferences();
    connect(&preferences, &Preferences::changed, this, &AppDelegate::applyPreferencesLater);
    connect(&m_menuBar, &MenuBarController::updated, this, &AppDelegate::statusChanged);
    connect(&state, &MeetState::cameraOnChanged, this, &AppDelegate::statusChanged);
    connect(&m_environment.store(), &EventStore::upcomingChanged, this, &AppDelegate::statusChanged);
    connect(&m_environment.registry(), &AccountRegistry::accountsChanged, this, &AppDelegate::statusChanged);
    connect(&m_environment.google(), &GoogleProvider::signedInChanged, this, &AppDelegate::statusChanged);

    QTimer::singleShot(3s, this,
                       [hasScreen = desktop.screens.mainFrame().has_value(), &scene = desktop.scene] {
                           if (hasScreen)
                               scene.prepare();
                       });
    qCInfo(lcApp).noquote() << "Kestrel launched";
}

AppDelegate::~AppDelegate()
{
    m_environment.presenter().dismissAll();
}

void AppDelegate::applyPreferencesLater()
{
    if (std::exchange(m_appliesLater, true))
        return;
    QMetaObject::invokeMethod(this, &AppDelegate::applyPreferences, Qt::QueuedConnection);
}

void AppDelegate::applyPreferences()
{
    m_appliesLater = false;
    const Preferences &preferences = m_environment.preferences();
    if (m_joinShortcut) {
        m_joinShortcut->unregisterHotkey();
        m_joinShortcut.reset();
    }
    const Hotkey binding = preferences.hotkey(HotkeyAction::join);
    if (preferences.enableJoinShortcut() && !binding.isNone()) {
        m_joinShortcut =
            std::make_unique<GlobalHotkey>(m_hotkeys, u"Join"_s, binding.keyCode, binding.modifiers,
                                           row(HotkeyAction::join).identifier, [this] { joinNextMeeting(); });
        m_joinShortcut->registerHotkey();
    }
    if (preferences.enableMeetControls())
        m_meetControls.start();
    else
        m_meetControls.stop();
    if (preferences.enableStreamDeckBridge())
        m_bridge.start(m_bridgePort);
    else
        m_bridge.stop();
}

void AppDelegate::broadcastLater()
{
    // one message for all that one answer of the page changes
    if (std::exchange(m_broadcastsLater, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_broadcastsLater = false;
            m_bridge.broadcast(MeetStateSnapshot::of(m_environment.meetState()));
        },
        Qt::QueuedConnection);
}

void AppDelegate::perform(HotkeyAction action)
{
    if (action == HotkeyAction::join)
        joinNextMeeting();
    else
        m_meetControls.dispatch(action);
}

void AppDelegate::followSecrets(const SecretStore &secrets, Notifications &notifications)
{
    m_secretsPatience.setSingleShot(true);
    connect(&secrets, &SecretStore::trouble, this, [this](const QString &message) {
        m_secretsTrouble = message;
        m_secretsPatience.start();
    });
    connect(&m_secretsPatience, &QTimer::timeout, this, [this, &notifications] {
        notifications.show({ .key = secretsKey,
                             .title = qtTrId("keyring.missing"),
                             .text = m_secretsTrouble,
                             .actions = {} });
    });
    connect(&secrets, &SecretStore::opened, this, [this, &notifications] {
        m_secretsPatience.stop();
        notifications.close(secretsKey);
    });
}

void AppDelegate::sayTrayIsMissing(const QString &message, Notifications &notifications)
{
    qCWarning(lcMenubar).noquote() << message;
    if (m_preferenceStore.boolean(saidTrayIsMissingKey).value_or(false))
        return;
    notifications.show(
        { .key = saidTrayIsMissingKey, .title = u"Kestrel"_s, .text = message, .actions = {} });
    m_preferenceStore.setBoolean(saidTrayIsMissingKey, true);
}

void AppDelegate::saySignedOut(Notifications &notifications)
{
    const QStringList accounts = m_environment.signedOutAccounts();
    m_menuBar.setSignedOut(accounts);
    if (accounts.isEmpty()) {
        notifications.close(signedOutKey);
        return;
    }
    notifications.show({ .key = signedOutKey,
                         .title = qtTrId("signed_out.message %@").arg(accounts.join(u", "_s)),
                         .text = qtTrId("signed_out.notice"),
                         .actions = { { u"accounts"_s, qtTrId("signed_out.action") } } });
}

void AppDelegate::sayWhatIsUnsaved(Notifications &notifications)
{
    const QString text = m_settings.unsavedText();
    if (text.isEmpty())
        notifications.close(unsavedKey);
    else
        notifications.show(
            { .key = unsavedKey, .title = qtTrId("preferences.unsaved.title"), .text = text, .actions = {} });
}

void AppDelegate::showOnFirstRun(bool isJustInstalled)
{
    if (!isJustInstalled && m_preferenceStore.boolean(firstRunKey).value_or(false))
        return;
    QTimer::singleShot(800ms, this, [this] {
        m_menuBar.showPopover();
        m_preferenceStore.setBoolean(firstRunKey, true);
    });
}

std::optional<Meeting> AppDelegate::joinNextMeeting()
{
    const auto lead = static_cast<double>(m_environment.preferences().leadTimeMinutes()) * 60;
    auto meeting = meetingToJoin(m_environment.store(), lead, m_environment.clock().now());
    if (!meeting) {
        qCInfo(lcMenubar).noquote() << u"⌘⇧J → no joinable meeting, opening popover"_s;
        showAgenda();
        return {};
    }
    m_environment.opener().openForAccount(*meeting->meetingURL, meeting->accountID);
    qCInfo(lcMenubar).noquote().nospace() << u"⌘⇧J → joined meeting id="_s << meeting->id;
    return meeting;
}

void AppDelegate::retranslate()
{
    m_popover.retranslate();
    m_menuBar.updateTitle();
    m_settingsWindow.retranslate();
}

void AppDelegate::showAccounts()
{
    m_settingsWindow.show(SettingsModel::Tab::Accounts);
}

bool AppDelegate::showSettings()
{
    m_settingsWindow.show();
    return m_settingsWindow.isShown();
}

bool AppDelegate::showAgenda()
{
    m_menuBar.showPopover();
    return m_popover.isShown();
}

} // namespace kestrel
