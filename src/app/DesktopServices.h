#pragma once

namespace kestrel {

class Appearance;
class ApplicationLookup;
class FloatingWindows;
class HelperChannel;
class Notifications;
class QuickScene;
class Screens;
class SoundPlayer;
class StatusItemHost;
class Theme;
class WakeTimer;

/// What everything on screen works with. All of it outlives who it is given to.
struct DesktopServices
{
    ApplicationLookup &applications;
    FloatingWindows &windows;
    HelperChannel &helper;
    Notifications &notifications;
    Screens &screens;
    SoundPlayer &sounds;
    StatusItemHost &statusItem;
    WakeTimer &alertTimer;
    Theme &theme;
    QuickScene &scene;
};

} // namespace kestrel
