#pragma once
#include "app/AppEnvironment.h"
#include "app/DesktopServices.h"
#include "app/Doctor.h"
#include "app/OnboardingModel.h"
#include "hotkeys/GlobalHotkey.h"
#include "hotkeys/HotkeyDispatcher.h"
#include "meet/MeetControlsController.h"
#include "meet/MeetHUDPresenter.h"
#include "menubar/AgendaModel.h"
#include "menubar/AgendaPopover.h"
#include "menubar/MenuBarController.h"
#include "settings/SettingsWindow.h"
#include "streamdeck/StreamDeckBridge.h"
#include <QObject>
#include <QTimer>
#include <memory>
#include <optional>

namespace kestrel {

/// The running application: the environment and everything on screen that works on it. Made once the platform
/// is up, and ends before it. Main thread only.
class AppDelegate final : public QObject
{
    Q_OBJECT
public:
    struct Start
    {
        bool isJustInstalled = false;
        QString missingClient {}; ///< what to say instead of a sign-in that cannot work; empty when it can
        quint16 bridgePort = 18424;
        std::chrono::milliseconds doctorPatience = Doctor::usualPatience;
        /// How long a store of secrets may be missing before the person is told: at a login it may start
        /// later.
        std::chrono::milliseconds secretsPatience = std::chrono::seconds(20);
    };

    /// What it is given outlives it.
    AppDelegate(PreferenceStore &preferenceStore, const AuthServices &services,
                const DesktopServices &desktop, const Start &start);
    /// Closes every alert card.
    ~AppDelegate() override;

    [[nodiscard]] AppEnvironment &environment() { return m_environment; }
    [[nodiscard]] AgendaModel &agenda() { return m_agenda; }
    [[nodiscard]] const MenuBarController &menuBar() const { return m_menuBar; }
    [[nodiscard]] Doctor &doctor() { return m_doctor; }

    /// Joins what a person would mean now, or shows the agenda where there is nothing to join. The meeting
    /// that is joined, if any.
    std::optional<Meeting> joinNextMeeting();
    /// What a global shortcut does; `join` joins.
    void perform(HotkeyAction action);
    /// False where there is no screen to show it on.
    bool showAgenda();
    /// Likewise.
    bool showSettings();
    /// The language is another one.
    void retranslate();

Q_SIGNALS:
    /// What `kestrel status` tells may be another.
    void statusChanged();

private:
    void showAccounts();
    /// Brings the join shortcut, the Meet controls and the bridge in line with the preferences.
    void applyPreferences();
    void applyPreferencesLater();
    void broadcastLater();
    void showOnFirstRun(bool isJustInstalled);
    /// Tells whoever is to sign in again, and takes that back when it is done.
    void saySignedOut(Notifications &notifications);
    /// Once, until settings could be stored again.
    void sayWhatIsUnsaved(Notifications &notifications);
    /// Once per person, not at every login.
    void followSecrets(const SecretStore &secrets, Notifications &notifications);
    void sayTrayIsMissing(const QString &message, Notifications &notifications);

    PreferenceStore &m_preferenceStore;
    quint16 m_bridgePort;
    AppEnvironment m_environment;
    AgendaModel m_agenda;
    OnboardingModel m_onboarding;
    AgendaPopover m_popover;
    MenuBarController m_menuBar;
    HotkeyDispatcher m_hotkeys;
    MeetHUDPresenter m_hud;
    MeetControlsController m_meetControls;
    SettingsModel m_settings;
    SettingsWindow m_settingsWindow;
    std::unique_ptr<GlobalHotkey> m_joinShortcut;
    StreamDeckBridge m_bridge;
    Doctor m_doctor;
    QString m_secretsTrouble;
    QTimer m_secretsPatience;
    bool m_appliesLater = false;
    bool m_broadcastsLater = false;
};

} // namespace kestrel
