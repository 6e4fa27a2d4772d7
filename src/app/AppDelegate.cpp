#include "app/AppDelegate.h"
#include "base/Log.h"
#include "menubar/MeetingChoice.h"
#include "platform/Notifications.h"
#include "platform/PreferenceStore.h"
#include "platform/Screens.h"
#include "platform/StatusItemHost.h"
#include "ui/Theme.h"
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QTimer>
#include <tuple>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

void qml_register_types_Kestrel_App();

namespace kestrel {

namespace {

constexpr auto firstRunKey = "popover.hasShownInitialAutoOpen.v1"_L1;
constexpr auto saidTrayIsMissingKey = "statusItem.saidTrayIsMissing.v1"_L1;

// the linker drops what nobody names
[[gnu::used]] void (*const keepModule)() = &qml_register_types_Kestrel_App;

} // namespace

AppDelegate::AppDelegate(PreferenceStore &preferenceStore, const AuthServices &services,
                         const DesktopServices &desktop, const Start &start)
    : m_preferenceStore(preferenceStore)
    , m_environment(preferenceStore, services, desktop)
    , m_agenda(m_environment.store(), m_environment.registry(), m_environment.preferences(), m_environment,
               m_environment.opener(), m_environment.clock())
    , m_onboarding(m_environment.google(), start.missingClient)
    , m_popover(desktop.scene, desktop.windows, desktop.screens, m_agenda,
                { QUrl(u"qrc:/qt/qml/Kestrel/App/OnboardingView.qml"_s), &m_onboarding })
    , m_menuBar(m_environment.store(), m_environment.preferences(), m_environment.meetState(),
                m_environment.clock(), desktop.statusItem, m_popover)
{
    Preferences &preferences = m_environment.preferences();
    const auto followTransparency = [&preferences, &theme = desktop.theme] {
        theme.setReducesTransparency(preferences.reduceTransparency());
    };
    followTransparency();
    connect(&preferences, &Preferences::changed, this, followTransparency);

    connect(&m_menuBar, &MenuBarController::joinRequested, this, &AppDelegate::joinNextMeeting);
    connect(&m_menuBar, &MenuBarController::refreshRequested, &m_environment, &AppEnvironment::startRefresh);
    connect(&m_menuBar, &MenuBarController::quitRequested, this, &QCoreApplication::quit,
            Qt::QueuedConnection);
    connect(&m_agenda, &AgendaModel::quitRequested, this, &QCoreApplication::quit, Qt::QueuedConnection);

    connect(&desktop.statusItem, &StatusItemHost::unavailable, this,
            [this, &notifications = desktop.notifications](const QString &message) {
                sayTrayIsMissing(message, notifications);
            });

    showOnFirstRun(start.isJustInstalled);
    // the first question about a font reads the whole collection: in a quiet moment, not on the first click
    QTimer::singleShot(3s, this, [hasScreen = desktop.screens.mainFrame().has_value()] {
        if (hasScreen)
            std::ignore = QFontMetricsF(QGuiApplication::font()).height();
    });
    qCInfo(lcApp).noquote() << "Kestrel launched";
}

AppDelegate::~AppDelegate()
{
    m_environment.presenter().dismissAll();
}

void AppDelegate::sayTrayIsMissing(const QString &message, Notifications &notifications)
{
    qCWarning(lcMenubar).noquote() << message;
    if (m_preferenceStore.boolean(saidTrayIsMissingKey).value_or(false))
        return;
    notifications.show(
        { .key = saidTrayIsMissingKey, .title = u"Kestrel"_s, .text = message, .actions = {} });
    m_preferenceStore.setBoolean(saidTrayIsMissingKey, true);
}

void AppDelegate::showOnFirstRun(bool isJustInstalled)
{
    if (!isJustInstalled && m_preferenceStore.boolean(firstRunKey).value_or(false))
        return;
    QTimer::singleShot(800ms, this, [this] {
        m_menuBar.showPopover();
        m_preferenceStore.setBoolean(firstRunKey, true);
    });
}

std::optional<Meeting> AppDelegate::joinNextMeeting()
{
    const auto lead = static_cast<double>(m_environment.preferences().leadTimeMinutes()) * 60;
    auto meeting = meetingToJoin(m_environment.store(), lead, m_environment.clock().now());
    if (!meeting) {
        qCInfo(lcMenubar).noquote() << u"⌘⇧J → no joinable meeting, opening popover"_s;
        showAgenda();
        return {};
    }
    m_environment.opener().openForAccount(*meeting->meetingURL, meeting->accountID);
    qCInfo(lcMenubar).noquote().nospace() << u"⌘⇧J → joined meeting id="_s << meeting->id;
    return meeting;
}

void AppDelegate::retranslate()
{
    m_popover.retranslate();
    m_menuBar.updateTitle();
}

bool AppDelegate::showAgenda()
{
    m_menuBar.showPopover();
    return m_popover.isShown();
}

} // namespace kestrel
