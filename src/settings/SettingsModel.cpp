#include "settings/SettingsModel.h"
#include "preferences/Preferences.h"
#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace kestrel {

SettingsModel::SettingsModel(const SettingsServices &services)
    : m_preferences(services.preferences)
    , m_general(services.preferences, services.loginItem)
    , m_appearance(services.preferences, services.opener, services.clock)
    , m_accounts(services.registry, services.google, services.preferences, services.refreshControl,
                 services.missingClient)
    , m_meetings(services.preferences, services.dispatcher, services.keyMonitor, services.browser)
    , m_notifications(services.preferences, services.sounds)
{
    connect(&m_preferences, &Preferences::unsavedInChanged, this, &SettingsModel::unsavedTextChanged);
}

void SettingsModel::retranslate()
{
    m_general.retranslate();
    m_appearance.retranslate();
    m_accounts.retranslate();
    m_meetings.retranslate();
    Q_EMIT retranslated();
    Q_EMIT unsavedTextChanged();
}

QStringList SettingsModel::tabTitles()
{
    return { qtTrId("settings.tab.general"),       qtTrId("settings.tab.appearance"),
             qtTrId("settings.tab.accounts"),      qtTrId("settings.tab.meetings"),
             qtTrId("settings.tab.notifications"), qtTrId("settings.tab.about") };
}

QStringList SettingsModel::tabSymbols()
{
    return { u"slider.horizontal.3"_s, u"paintbrush"_s, u"person.crop.circle"_s, u"video"_s, u"bell"_s,
             u"info.circle"_s };
}

void SettingsModel::setTab(Tab tab)
{
    if (tab == m_tab)
        return;
    m_tab = tab;
    Q_EMIT tabChanged();
}

QString SettingsModel::versionText()
{
    const QString version = QCoreApplication::applicationVersion();
    return qtTrId("about.version %@").arg(version.isEmpty() ? u"?"_s : version);
}

QString SettingsModel::unsavedText() const
{
    const QString path = m_preferences.unsavedIn();
    return path.isEmpty() ? QString() : qtTrId("preferences.unsaved.message %@").arg(path);
}

} // namespace kestrel
