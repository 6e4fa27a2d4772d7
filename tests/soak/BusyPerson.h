#pragma once
#include "app/AppDelegate.h"
#include "app/Desktop.h"
#include "app/Language.h"
#include "base/Clock.h"
#include "soak/Figures.h"
#include "soak/SoakGoogle.h"
#include "soak/SoakPanel.h"
#include "soak/TimeLapse.h"
#include "support/FakeApplicationLookup.h"
#include "support/FakeBrowserConnection.h"
#include "support/FakeHelperChannel.h"
#include "support/FakeLoginItem.h"
#include "support/FakeModalNotice.h"
#include "support/FakeNotifications.h"
#include "support/FakePreferenceStore.h"
#include "support/FakeSecretStore.h"
#include "support/FakeSoundPlayer.h"
#include "support/FakeUrlOpener.h"
#include "support/FakeWakeTimer.h"
#include <QWebSocket>
#include <memory>
#include <random>

QT_BEGIN_NAMESPACE
class QQuickView;
QT_END_NAMESPACE

namespace kestrel {

/// The whole application and someone who keeps it busy, at the speed of the machine: the clock stands while
/// there is work and jumps some minutes when there is none. Windows, tray and shortcuts are the
/// desktop's own; Google, keyring and browser are played. Everything happens in the same order in every run.
/// Needs a display and a session bus. Main thread only.
class BusyPerson final
{
public:
    /// What has happened so far.
    struct Deeds
    {
        qint64 minutes = 0;
        qint64 alerts = 0;
        qint64 joined = 0;
        qint64 dismissed = 0;
        qint64 frames = 0;
        qint64 signIns = 0;
        qint64 signOuts = 0;
        qint64 polls = 0;
        qint64 commands = 0;
        qint64 clients = 0;
        qint64 panels = 0;
        qint64 languages = 0;
        qint64 agendas = 0;
        qint64 settings = 0;
        qint64 examinations = 0;
    };

    BusyPerson(TimeLapse &lapse, int meetingsPerDay);
    ~BusyPerson();

    /// Goes on for so many minutes of Kestrel's own time.
    void keepBusy(int minutes);
    /// Ends all of it, to the state that every rest has in common, and takes the figures of that.
    [[nodiscard]] Figures rest();

    [[nodiscard]] const Deeds &deeds() const { return m_deeds; }
    [[nodiscard]] int requests() const { return m_google.requests; }
    /// Something that was to happen did not: the run is worth nothing. Empty: none.
    [[nodiscard]] const QString &trouble() const { return m_trouble; }

private:
    [[nodiscard]] AuthServices authServices();
    [[nodiscard]] DesktopServices desktopServices();
    [[nodiscard]] int chance(int below);

    void passStep();
    void turn(int turns = 6);
    /// False, and trouble, when it is not so within a minute by the machine's clock.
    template<typename Condition>
    bool await(const char *what, Condition condition);
    void countFrames();

    void signIn();
    void signOut(const QString &accountID);
    void tellGoogle();
    void changeAccounts();
    void answerCards();
    void useAgenda();
    void useSettings();
    void talkInTheCall();
    void useBridge();
    void leaveBridge();
    void restartPanel();
    void speakAnotherLanguage();
    void changeTastes();
    void forgetRecords();
    [[nodiscard]] static QQuickView *shownView(const char *property);
    void press(QQuickView &view, Qt::Key key);

    TimeLapse &m_lapse;
    std::mt19937 m_dice { 20250303 };
    FixedClock m_clock { *parseInternetDateTime(u"2025-03-03T00:00:00Z") };
    SoakGoogle m_google;
    FakePreferenceStore m_preferenceStore;
    FakeSecretStore m_secrets;
    FakeUrlOpener m_opener;
    FakeApplicationLookup m_applications;
    FakeBrowserConnection m_browser;
    FakeHelperChannel m_helper;
    FakeLoginItem m_loginItem;
    FakeModalNotice m_notice;
    FakeNotifications m_notifications;
    FakeSoundPlayer m_sounds;
    FakeWakeTimer m_alertTimer;
    Language m_language;
    SoakPanel m_panel;
    std::unique_ptr<Desktop> m_desktop;
    std::unique_ptr<AppDelegate> m_delegate;
    std::unique_ptr<QWebSocket> m_client;
    quint16 m_port;
    QStringList m_cards;
    Deeds m_deeds;
    QString m_trouble;
};

} // namespace kestrel
