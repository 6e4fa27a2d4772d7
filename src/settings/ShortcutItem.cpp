#include "settings/ShortcutItem.h"
#include "hotkeys/ActionLabel.h"
#include "preferences/Preferences.h"

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

void ShortcutItem::reset()
{
    m_preferences.resetHotkey(m_action);
}

void ShortcutItem::follow()
{
    m_recorder.setHotkey(m_preferences.hotkey(m_action));
}

} // namespace kestrel
