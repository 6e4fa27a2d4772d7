#include "app/Desktop.h"
#include "app/BrowserVerb.h"
#include "app/SetupBrowserConnection.h"
#include "command/InstancePlace.h"
#include "meet/DBusHelperChannel.h"
#include "platform/linux/AbsoluteWakeTimer.h"
#include "platform/linux/CanberraSoundPlayer.h"
#include "platform/linux/DBusNotifications.h"
#include "platform/linux/DesktopApplicationLookup.h"
#include "platform/linux/DesktopScreens.h"
#include "platform/linux/DesktopStatusItemHost.h"
#include "platform/linux/MakeFloatingWindows.h"
#include "platform/linux/MakeShortcutBackend.h"
#include "platform/linux/PortalAppearance.h"
#include "platform/linux/QtKeyMonitor.h"
#include "platform/linux/XdgLoginItem.h"
#include "platform/null/NullAppearance.h"
#include "platform/null/NullBrowserConnection.h"
#include "platform/null/NullFloatingWindows.h"
#include "platform/null/NullHelperChannel.h"
#include "platform/null/NullModalNotice.h"
#include "platform/null/NullNotifications.h"
#include "platform/null/NullScreens.h"
#include "platform/null/NullShortcuts.h"
#include "platform/null/NullSoundPlayer.h"
#include "platform/null/NullStatusItemHost.h"
#include "ui/QuickModalNotice.h"
#include "ui/QuickScene.h"
#include "ui/Theme.h"

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

DBusHelperChannel::Program helperProgram(const InstancePlace &place)
{
    QStringList arguments { u"--preferences"_s,   place.preferencesFile, u"--sockets"_s,
                            place.browserSockets, u"--profile"_s,        place.browserProfile };
    if (!place.dataFolder.isEmpty())
        arguments += { u"--install-home"_s, place.dataFolder + u"/home"_s };
    for (const QString &argument : place.startArguments)
        arguments += u"--start-with="_s + argument;
    return { companionProgram("kestrel-browser-helper"_L1), arguments };
}

class DisplayDesktop final : public Desktop
{
public:
    explicit DisplayDesktop(const InstancePlace &place)
        : m_browser(browserPlaces(place))
        , m_helper(QDBusConnection::sessionBus(), place.busName, helperProgram(place))
        , m_loginItem(place.autostartFolder, companionProgram("kestrel"_L1))
        , m_sounds(installPrefix() + u"/share/kestrel/sounds"_s, place.soundCache)
    {
    }

    [[nodiscard]] DesktopServices services() override
    {
        return { m_applications, m_browser,     *m_windows,      m_helper,  m_keyMonitor,
                 m_loginItem,    m_notice,      m_notifications, m_screens, *m_shortcuts,
                 m_sounds,       *m_statusItem, m_alertTimer,    m_theme,   m_scene };
    }

private:
    PortalAppearance m_appearance;
    DesktopApplicationLookup m_applications;
    SetupBrowserConnection m_browser;
    std::unique_ptr<FloatingWindows> m_windows = makeFloatingWindows();
    DBusHelperChannel m_helper;
    QtKeyMonitor m_keyMonitor;
    XdgLoginItem m_loginItem;
    DBusNotifications m_notifications { QDBusConnection::sessionBus() };
    DesktopScreens m_screens;
    std::unique_ptr<ShortcutBackend> m_shortcuts = makeShortcutBackend(QDBusConnection::sessionBus());
    CanberraSoundPlayer m_sounds;
    std::unique_ptr<StatusItemHost> m_statusItem = makeStatusItemHost(m_appearance);
    AbsoluteWakeTimer m_alertTimer;
    Theme m_theme { m_appearance };
    QuickScene m_scene;
    QuickModalNotice m_notice { m_scene, *m_windows, m_screens, m_theme };
};

class HeadlessDesktop final : public Desktop
{
public:
    explicit HeadlessDesktop(const InstancePlace &place)
        : m_loginItem(place.autostartFolder, companionProgram("kestrel"_L1))
    {
    }

    [[nodiscard]] DesktopServices services() override
    {
        return { m_applications, m_browser,    m_windows,       m_helper,  m_keyMonitor,
                 m_loginItem,    m_notice,     m_notifications, m_screens, m_shortcuts,
                 m_sounds,       m_statusItem, m_alertTimer,    m_theme,   m_scene };
    }

private:
    NullAppearance m_appearance;
    DesktopApplicationLookup m_applications;
    NullBrowserConnection m_browser;
    NullFloatingWindows m_windows;
    NullHelperChannel m_helper;
    QtKeyMonitor m_keyMonitor;
    XdgLoginItem m_loginItem;
    NullModalNotice m_notice;
    NullNotifications m_notifications;
    NullScreens m_screens;
    NullShortcuts m_shortcuts;
    NullSoundPlayer m_sounds;
    NullStatusItemHost m_statusItem;
    AbsoluteWakeTimer m_alertTimer;
    Theme m_theme { m_appearance };
    QuickScene m_scene;
};

} // namespace

std::unique_ptr<Desktop> Desktop::make(bool hasDisplay, const InstancePlace &place)
{
    if (hasDisplay)
        return std::make_unique<DisplayDesktop>(place);
    return std::make_unique<HeadlessDesktop>(place);
}

} // namespace kestrel
