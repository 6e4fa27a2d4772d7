#include "settings/GeneralSettings.h"
#include "preferences/Preferences.h"
#include <QCoreApplication>
#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr std::array<qint64, 4> leadMinutes { 1, 5, 10, 15 };

} // namespace

GeneralSettings::GeneralSettings(Preferences &preferences, LoginItem &loginItem)
    : m_preferences(preferences)
    , m_loginItem(loginItem)
{
    connect(&preferences, &Preferences::changed, this, &GeneralSettings::changed);
}

void GeneralSettings::retranslate()
{
    Q_EMIT retranslated();
    Q_EMIT changed();
}

QStringList GeneralSettings::leadTimes() const
{
    return { qtTrId("settings.lead.1m"), qtTrId("settings.lead.5m"), qtTrId("settings.lead.10m"),
             qtTrId("settings.lead.15m") };
}

int GeneralSettings::leadTime() const
{
    const auto found = std::ranges::find(leadMinutes, m_preferences.leadTimeMinutes());
    return found == leadMinutes.end() ? -1 : static_cast<int>(found - leadMinutes.begin());
}

void GeneralSettings::setLeadTime(int index)
{
    m_preferences.setLeadTimeMinutes(leadMinutes.at(static_cast<std::size_t>(index)));
}

int GeneralSettings::autoDismissSeconds() const
{
    return static_cast<int>(
        std::clamp<qint64>(m_preferences.autoDismissSeconds(), 0, std::numeric_limits<int>::max()));
}

void GeneralSettings::setAutoDismissSeconds(int seconds)
{
    m_preferences.setAutoDismissSeconds(std::clamp(seconds, 0, longestAutoDismiss));
}

QString GeneralSettings::autoDismissText() const
{
    const int seconds = autoDismissSeconds();
    return seconds == 0 ? qtTrId("settings.auto_dismiss.manual") : QString::number(seconds) + u's';
}

QStringList GeneralSettings::positions() const
{
    return {
        qtTrId("position.top_left"),    qtTrId("position.top_center"),    qtTrId("position.top_right"),
        qtTrId("position.bottom_left"), qtTrId("position.bottom_center"), qtTrId("position.bottom_right")
    };
}

int GeneralSettings::position() const
{
    const auto &all = Preferences::screenPositions;
    return static_cast<int>(std::ranges::find(all, m_preferences.screenPosition()) - all.begin());
}

void GeneralSettings::setPosition(int index)
{
    m_preferences.setScreenPosition(Preferences::screenPositions.at(static_cast<std::size_t>(index)));
}

bool GeneralSettings::launchAtLogin() const
{
    return m_preferences.launchAtLogin();
}

void GeneralSettings::setLaunchAtLogin(bool launch)
{
    m_preferences.setLaunchAtLogin(launch);
    kestrel::setLaunchAtLogin(launch, m_loginItem);
}

} // namespace kestrel
