#pragma once
#include "settings/AccountsModel.h"
#include "settings/AppearanceSettings.h"
#include "settings/GeneralSettings.h"
#include "settings/MeetingsSettings.h"
#include "settings/NotificationSettings.h"

namespace kestrel {

/// What the settings work on. All of it outlives them.
struct SettingsServices
{
    Preferences &preferences;
    AccountRegistry &registry;
    GoogleProvider &google;
    RefreshControl &refreshControl;
    MeetingOpener &opener;
    const Clock &clock;
    SoundPlayer &sounds;
    LoginItem &loginItem;
    BrowserConnection &browser;
    HotkeyDispatcher &dispatcher;
    KeyMonitor &keyMonitor;
    QString missingClient; ///< what to say instead of a sign-in that cannot work; empty when it can
};

/// What the settings window shows: its tabs, and behind each what is edited there. Toggles are bound to the
/// preferences themselves. Main thread only.
class SettingsModel final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("app/ makes it")
    Q_PROPERTY(QStringList tabTitles READ tabTitles NOTIFY retranslated)
    Q_PROPERTY(QStringList tabSymbols READ tabSymbols CONSTANT)
    Q_PROPERTY(Tab tab READ tab WRITE setTab NOTIFY tabChanged)
    Q_PROPERTY(kestrel::Preferences *preferences READ preferences CONSTANT)
    Q_PROPERTY(kestrel::GeneralSettings *general READ general CONSTANT)
    Q_PROPERTY(kestrel::AppearanceSettings *appearance READ appearance CONSTANT)
    Q_PROPERTY(kestrel::AccountsModel *accounts READ accounts CONSTANT)
    Q_PROPERTY(kestrel::MeetingsSettings *meetings READ meetings CONSTANT)
    Q_PROPERTY(kestrel::NotificationSettings *notifications READ notifications CONSTANT)
    Q_PROPERTY(QString versionText READ versionText NOTIFY retranslated)
    Q_PROPERTY(QString unsavedText READ unsavedText NOTIFY unsavedTextChanged)
public:
    enum class Tab { General, Appearance, Accounts, Meetings, Notifications, About };
    Q_ENUM(Tab)

    explicit SettingsModel(const SettingsServices &services);

    /// The language or the locale is another one.
    void retranslate();

    [[nodiscard]] static QStringList tabTitles();
    [[nodiscard]] static QStringList tabSymbols();
    [[nodiscard]] Tab tab() const { return m_tab; }
    void setTab(Tab tab);

    [[nodiscard]] Preferences *preferences() { return &m_preferences; }
    [[nodiscard]] GeneralSettings *general() { return &m_general; }
    [[nodiscard]] AppearanceSettings *appearance() { return &m_appearance; }
    [[nodiscard]] AccountsModel *accounts() { return &m_accounts; }
    [[nodiscard]] MeetingsSettings *meetings() { return &m_meetings; }
    [[nodiscard]] NotificationSettings *notifications() { return &m_notifications; }
    [[nodiscard]] static QString versionText();
    /// That changes cannot be stored, and what to do about it; empty while they can.
    [[nodiscard]] QString unsavedText() const;

Q_SIGNALS:
    void retranslated();
    void unsavedTextChanged();
    void tabChanged();

private:
    Preferences &m_preferences;
    GeneralSettings m_general;
    AppearanceSettings m_appearance;
    AccountsModel m_accounts;
    MeetingsSettings m_meetings;
    NotificationSettings m_notifications;
    Tab m_tab = Tab::General;
};

} // namespace kestrel
