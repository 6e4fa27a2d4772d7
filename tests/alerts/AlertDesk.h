#pragma once
#include "alerts/AlertPresenter.h"
#include "google/AccountRegistry.h"
#include "menubar/MeetingOpener.h"
#include "preferences/Preferences.h"
#include "support/FakeAppearance.h"
#include "support/FakeApplicationLookup.h"
#include "support/FakeFloatingWindows.h"
#include "support/FakeHelperChannel.h"
#include "support/FakeNotifications.h"
#include "support/FakePreferenceStore.h"
#include "support/FakeScreens.h"
#include "support/FakeSoundPlayer.h"
#include "support/FakeUrlOpener.h"
#include "support/MakeMeeting.h"
#include "ui/QuickScene.h"
#include "ui/Theme.h"
#include <QCoreApplication>
#include <memory>

namespace kestrel {

/// A presenter on fakes, at 09:50 of a day in March.
struct AlertDesk
{
    FixedClock clock { *parseInternetDateTime(u"2025-03-03T09:50:00Z") };
    FakePreferenceStore store;
    Preferences preferences { store };
    AccountRegistry registry { store };
    FakeUrlOpener urls;
    FakeApplicationLookup applications;
    FakeHelperChannel helper;
    FakeScreens screens;
    MeetingOpener opener { registry, preferences, urls, applications, helper, screens };
    FakeAppearance appearance;
    Theme theme { appearance };
    QuickScene scene;
    FakeFloatingWindows windows;
    FakeSoundPlayer sounds;
    FakeNotifications notifications;
    std::unique_ptr<AlertPresenter> presenter = std::make_unique<AlertPresenter>(
        preferences, opener, clock, scene, windows, screens, sounds, notifications, theme);

    /// Starts at that minute after nine.
    [[nodiscard]] static Meeting meeting(const QString &id, int minute, int length = 30)
    {
        const Instant start = *parseInternetDateTime(u"2025-03-03T09:00:00Z") + std::chrono::minutes(minute);
        return makeMeeting(id, start, start + std::chrono::minutes(length), QStringLiteral("a"));
    }

    static void settle()
    {
        for (int turn = 0; turn < 10; ++turn)
            QCoreApplication::processEvents();
    }
};

} // namespace kestrel
