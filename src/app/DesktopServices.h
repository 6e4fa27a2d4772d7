#pragma once

namespace kestrel {

class Appearance;
class ApplicationLookup;
class BrowserConnection;
class FloatingWindows;
class HelperChannel;
class KeyMonitor;
class LoginItem;
class ModalNotice;
class Notifications;
class QuickScene;
class Screens;
class ShortcutBackend;
class SoundPlayer;
class StatusItemHost;
class Theme;
class WakeTimer;

/// What everything on screen works with. All of it outlives who it is given to.
struct DesktopServices
{
    ApplicationLookup &applications;
    BrowserConnection &browser;
    FloatingWindows &windows;
    HelperChannel &helper;
    KeyMonitor &keyMonitor;
    LoginItem &loginItem;
    ModalNotice &notice;
    Notifications &notifications;
    Screens &screens;
    ShortcutBackend &shortcuts;
    SoundPlayer &sounds;
    StatusItemHost &statusItem;
    WakeTimer &alertTimer;
    Theme &theme;
    QuickScene &scene;
};

} // namespace kestrel
