#include "settings/ShortcutItem.h"
#include "hotkeys/ActionLabel.h"
#include "preferences/Preferences.h"
#include <algorithm>

namespace kestrel {

ShortcutItem::ShortcutItem(HotkeyAction action, Preferences &preferences, HotkeyDispatcher &dispatcher,
                           KeyMonitor &monitor, QObject *parent)
    : QObject(parent)
    , m_action(action)
    , m_preferences(preferences)
    , m_recorder(dispatcher, monitor)
{
    follow();
    connect(&preferences, &Preferences::changed, this, &ShortcutItem::follow);
    connect(&m_recorder, &KeyRecorder::recorded, this,
            [this](Hotkey hotkey) { m_preferences.setHotkey(hotkey, m_action); });
}

void ShortcutItem::retranslate()
{
    Q_EMIT changed();
    Q_EMIT m_recorder.changed();
}

QString ShortcutItem::label() const
{
    return actionLabel(m_action);
}

QString ShortcutItem::error() const
{
    const Hotkey own = m_preferences.hotkey(m_action);
    if (own.isNone() || !isInUse(m_action))
        return {};
    const auto twin = std::ranges::find_if(hotkeyActions(), [&](const HotkeyActionRow &other) {
        return other.action != m_action && isInUse(other.action) && m_preferences.hotkey(other.action) == own;
    });
    return twin == hotkeyActions().end()
        ? QString()
        : qtTrId("settings.hotkey.same_keys %@").arg(actionLabel(twin->action));
}

void ShortcutItem::reset()
{
    m_preferences.resetHotkey(m_action);
}

void ShortcutItem::follow()
{
    m_recorder.setHotkey(m_preferences.hotkey(m_action));
    Q_EMIT changed(); // also when another one's keys are the same now
}

bool ShortcutItem::isInUse(HotkeyAction action) const
{
    return action == HotkeyAction::join ? m_preferences.enableJoinShortcut()
                                        : m_preferences.enableMeetControls();
}

} // namespace kestrel
