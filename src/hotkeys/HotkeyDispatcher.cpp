#include "hotkeys/HotkeyDispatcher.h"
#include "hotkeys/GlobalHotkey.h"
#include <algorithm>
#include <ranges>
#include <utility>

namespace kestrel {

HotkeyDispatcher::HotkeyDispatcher(ShortcutBackend &backend)
    : m_backend(backend)
{
    connect(&backend, &ShortcutBackend::answered, this, &HotkeyDispatcher::takeAnswer);
    connect(&backend, &ShortcutBackend::pressed, this, &HotkeyDispatcher::runLater);
}

void HotkeyDispatcher::add(GlobalHotkey &hotkey)
{
    m_actions.insert(hotkey.m_shortcut.id, hotkey.m_action);
    m_hotkeys.append(&hotkey);
    bindLater();
}

void HotkeyDispatcher::remove(GlobalHotkey &hotkey)
{
    m_actions.remove(hotkey.m_shortcut.id);
    forget(hotkey);
}

void HotkeyDispatcher::forget(GlobalHotkey &hotkey)
{
    m_hotkeys.removeOne(&hotkey);
    bindLater();
}

QList<HotkeyRegistration> HotkeyDispatcher::registrations() const
{
    using enum HotkeyRegistration::State;
    QList<HotkeyRegistration> all;
    for (const GlobalHotkey *hotkey : m_hotkeys) {
        const auto state = hotkey->m_state;
        all.append({ hotkey->m_shortcut,
                     state == GlobalHotkey::State::Registered    ? Registered
                         : state == GlobalHotkey::State::Refused ? Refused
                                                                 : Waiting });
    }
    return all;
}

void HotkeyDispatcher::bindLater()
{
    if (std::exchange(m_isBindingPlanned, true))
        return;
    QMetaObject::invokeMethod(this, &HotkeyDispatcher::bind, Qt::QueuedConnection);
}

void HotkeyDispatcher::bind()
{
    m_isBindingPlanned = false;
    QList<ShortcutBackend::Shortcut> set;
    // of two with one identifier the later one counts
    for (const GlobalHotkey *hotkey : m_hotkeys | std::views::reverse) {
        if (std::ranges::find(set, hotkey->m_shortcut.id, &ShortcutBackend::Shortcut::id) == set.end())
            set.prepend(hotkey->m_shortcut);
    }
    const bool isTakenWhole = m_outcomes.size() == set.size()
        && std::ranges::all_of(m_outcomes, &ShortcutBackend::Outcome::isBound);
    if (set == m_bound && isTakenWhole) {
        tell(m_outcomes);
        return;
    }
    m_bound = set;
    m_outcomes.clear();
    m_backend.bind(set);
}

void HotkeyDispatcher::takeAnswer(const QList<ShortcutBackend::Outcome> &outcomes)
{
    m_outcomes = outcomes;
    // the set that it answers is about to be another one
    if (!m_isBindingPlanned)
        tell(outcomes);
}

void HotkeyDispatcher::tell(const QList<ShortcutBackend::Outcome> &outcomes)
{
    for (const auto &[id, isBound] : outcomes) {
        bool isWanted = false;
        for (GlobalHotkey *hotkey : std::as_const(m_hotkeys)) {
            if (hotkey->m_shortcut.id != id)
                continue;
            // the desktop took it back and gives it again
            if (isBound && hotkey->m_state == GlobalHotkey::State::Refused)
                m_actions.insert(id, hotkey->m_action);
            hotkey->answer(isBound);
            isWanted = true;
        }
        if (isWanted && !isBound)
            m_actions.remove(id);
    }
}

void HotkeyDispatcher::runLater(quint32 id)
{
    // outside the desktop's own event; what was unregistered meanwhile is not there any more
    QMetaObject::invokeMethod(
        this,
        [this, id] {
            if (const auto action = m_actions.value(id))
                action();
        },
        Qt::QueuedConnection);
}

} // namespace kestrel
