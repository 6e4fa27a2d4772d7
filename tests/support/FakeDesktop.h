#pragma once
#include "app/DesktopServices.h"
#include "support/FakeAppearance.h"
#include "support/FakeApplicationLookup.h"
#include "support/FakeBrowserConnection.h"
#include "support/FakeFloatingWindows.h"
#include "support/FakeHelperChannel.h"
#include "support/FakeKeyMonitor.h"
#include "support/FakeLoginItem.h"
#include "support/FakeModalNotice.h"
#include "support/FakeNotifications.h"
#include "support/FakeScreens.h"
#include "support/FakeShortcutBackend.h"
#include "support/FakeSoundPlayer.h"
#include "support/FakeStatusItemHost.h"
#include "support/FakeWakeTimer.h"
#include "ui/QuickScene.h"
#include "ui/Theme.h"

namespace kestrel {

/// Every fake of what is seen and heard, together.
struct FakeDesktop
{
    FakeAppearance appearance;
    FakeApplicationLookup applications;
    FakeBrowserConnection browser;
    FakeFloatingWindows windows;
    FakeHelperChannel helper;
    FakeKeyMonitor keyMonitor;
    FakeLoginItem loginItem;
    FakeModalNotice notice;
    FakeNotifications notifications;
    FakeScreens screens;
    FakeShortcutBackend shortcuts;
    FakeSoundPlayer sounds;
    FakeStatusItemHost statusItem;
    FakeWakeTimer alertTimer;
    Theme theme { appearance };
    QuickScene scene;

    [[nodiscard]] DesktopServices services()
    {
        return { applications, browser,   windows, helper,     keyMonitor, loginItem, notice, notifications,
                 screens,      shortcuts, sounds,  statusItem, alertTimer, theme,     scene };
    }
};

} // namespace kestrel
