#pragma once
#include "google/AccountRegistry.h"
#include "menubar/AgendaModel.h"
#include "menubar/MeetingOpener.h"
#include "menubar/RefreshControl.h"
#include "model/EventStore.h"
#include "preferences/Preferences.h"
#include "support/FakeAppearance.h"
#include "support/FakeApplicationLookup.h"
#include "support/FakeFloatingWindows.h"
#include "support/FakeHelperChannel.h"
#include "support/FakePreferenceStore.h"
#include "support/FakeScreens.h"
#include "support/FakeUrlOpener.h"
#include "support/MakeMeeting.h"
#include "ui/Theme.h"
#include <QTranslator>

namespace kestrel {

class FakeRefreshControl final : public RefreshControl
{
    Q_OBJECT
public:
    [[nodiscard]] bool isRefreshing() const override { return refreshing; }
    [[nodiscard]] std::optional<Instant> lastRefresh() const override { return last; }
    void startRefresh() override { ++started; }
    [[nodiscard]] QStringList signedOutAccounts() const override { return signedOut; }

    QStringList signedOut;
    bool refreshing = false;
    std::optional<Instant> last;
    int started = 0;
};

/// Everything that the room stands on, with one account and noon as the time.
struct Desk
{
    explicit Desk(const QString &language = QStringLiteral("en"))
    {
        if (translator.load(QStringLiteral(":/i18n/kestrel_") + language))
            QCoreApplication::installTranslator(&translator);
        CalendarAccount ann;
        ann.id = account;
        ann.email = QStringLiteral("ann+work@example.com");
        registry.add(ann);
    }

    /// Minutes from now; with a link of `host` unless that is empty.
    [[nodiscard]] Meeting meeting(const QString &id, double start, double end,
                                  const QString &host = QStringLiteral("meet.google.com")) const
    {
        Meeting made = makeMeeting(id, clock.now() + secondsSpan(start * 60),
                                   clock.now() + secondsSpan(end * 60), account);
        if (!host.isEmpty()) {
            made.meetingURL = QUrl(QStringLiteral("https://%1/%2").arg(host, id));
            made.platform = classifyPlatform(*made.meetingURL);
        }
        return made;
    }
    void show(const QList<Meeting> &meetings) { store.replace(account, meetings); }

    QTranslator translator;
    const QString account = QStringLiteral("google:1");
    FixedClock clock { *parseInternetDateTime(u"2025-03-03T15:30:00Z") };
    EventStore store { clock };
    FakePreferenceStore preferenceStore;
    Preferences preferences { preferenceStore };
    AccountRegistry registry { preferenceStore };
    FakeUrlOpener browser;
    FakeApplicationLookup applications;
    FakeHelperChannel helper;
    FakeScreens screens;
    FakeFloatingWindows windows;
    FakeAppearance appearance;
    Theme theme { appearance };
    FakeRefreshControl refreshControl;
    MeetingOpener opener { registry, preferences, browser, applications, helper, screens };
    AgendaModel agenda { store, registry, preferences, refreshControl, opener, clock };
};

} // namespace kestrel
