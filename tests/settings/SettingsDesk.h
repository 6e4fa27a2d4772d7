#pragma once
#include "google/AccountRegistry.h"
#include "google/GoogleProvider.h"
#include "hotkeys/HotkeyDispatcher.h"
#include "menubar/MeetingOpener.h"
#include "menubar/RefreshControl.h"
#include "preferences/Preferences.h"
#include "settings/SettingsWindow.h"
#include "support/FakeAppearance.h"
#include "support/FakeApplicationLookup.h"
#include "support/FakeBrowserConnection.h"
#include "support/FakeGoogle.h"
#include "support/FakeHelperChannel.h"
#include "support/FakeKeyMonitor.h"
#include "support/FakeLoginItem.h"
#include "support/FakeScreens.h"
#include "support/FakeShortcutBackend.h"
#include "support/FakeSoundPlayer.h"
#include "ui/QuickScene.h"
#include "ui/Theme.h"
#include <QTranslator>

namespace kestrel {

class CountingRefreshControl final : public RefreshControl
{
public:
    [[nodiscard]] bool isRefreshing() const override { return false; }
    [[nodiscard]] std::optional<Instant> lastRefresh() const override { return {}; }
    void startRefresh() override { ++started; }

    int started = 0;
};

/// The settings on fakes, at noon of a day in March, with `accounts` signed in.
struct SettingsDesk
{
    explicit SettingsDesk(const QStringList &accounts = {}, const QString &language = QStringLiteral("en"))
        : spoken(speak(language))
    {
        for (const QString &id : accounts) {
            registry.add(account(id));
            (void)provider.oauth(id); // as for the accounts that are there when it is made
        }
        google.transport.answer(
            QStringLiteral("/calendar/v3/users/me/calendarList"), 200,
            R"({"items":[{"id":"ann@example.com","summary":"Ann","primary":true,"backgroundColor":"#4DB6AC"},
                         {"id":"team","summary":"Team","backgroundColor":"#E57373"},
                         {"id":"leave","summary":"Leave and holidays of everybody in the harbour office"}]})");
    }
    ~SettingsDesk() { google.finish(); }
    SettingsDesk(const SettingsDesk &) = delete;
    SettingsDesk &operator=(const SettingsDesk &) = delete;

    /// With tokens that are good for years.
    CalendarAccount account(const QString &id)
    {
        CalendarAccount made = google.account(id);
        made.meetLaunchMode = MeetLaunchMode::Popup;
        return made;
    }
    bool speak(const QString &language)
    {
        return translator.load(QStringLiteral(":/i18n/kestrel_") + language)
            && QCoreApplication::installTranslator(&translator);
    }
    [[nodiscard]] AccountItem *item(int row) const
    {
        return settings.accounts()->index(row).data(Qt::UserRole).value<AccountItem *>();
    }

    QTranslator translator;
    bool spoken; ///< before anything that makes texts
    FakeGoogle google;
    FakePreferenceStore &store = google.preferences;
    Preferences preferences { store };
    AccountRegistry registry { store };
    GoogleProvider provider { registry, google.services() };
    CountingRefreshControl refreshControl;
    FakeApplicationLookup applications;
    FakeHelperChannel helper;
    FakeScreens screens;
    MeetingOpener opener { registry, preferences, google.opener, applications, helper, screens };
    FakeSoundPlayer sounds;
    FakeLoginItem loginItem;
    FakeBrowserConnection browser;
    FakeShortcutBackend shortcuts;
    HotkeyDispatcher dispatcher { shortcuts };
    FakeKeyMonitor keyMonitor;
    mutable SettingsModel settings { { preferences,
                                       registry,
                                       provider,
                                       refreshControl,
                                       opener,
                                       google.clock,
                                       sounds,
                                       loginItem,
                                       browser,
                                       dispatcher,
                                       keyMonitor,
                                       {} } };
    FakeAppearance appearance;
    Theme theme { appearance };
    QuickScene scene;
    SettingsWindow window { scene, screens, settings };
};

} // namespace kestrel
