#include "settings/NotificationSettings.h"
#include "platform/SoundPlayer.h"
#include "preferences/Preferences.h"
#include <algorithm>

namespace kestrel {

NotificationSettings::NotificationSettings(Preferences &preferences, SoundPlayer &player)
    : m_preferences(preferences)
    , m_player(player)
{
    connect(&preferences, &Preferences::changed, this, &NotificationSettings::changed);
}

QStringList NotificationSettings::sounds() const
{
    QStringList names;
    for (const auto sound : Preferences::alertSounds)
        names.append(Preferences::rawValue(sound));
    return names;
}

int NotificationSettings::sound() const
{
    const auto &all = Preferences::alertSounds;
    return static_cast<int>(std::ranges::find(all, m_preferences.alertSound()) - all.begin());
}

void NotificationSettings::choose(int index)
{
    m_preferences.setAlertSound(Preferences::alertSounds.at(static_cast<std::size_t>(index)));
    play(index);
}

void NotificationSettings::play(int index)
{
    m_player.play(Preferences::rawValue(Preferences::alertSounds.at(static_cast<std::size_t>(index))));
}

} // namespace kestrel
