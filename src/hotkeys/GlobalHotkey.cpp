#include "hotkeys/GlobalHotkey.h"
#include "base/Log.h"
#include "hotkeys/ActionLabel.h"
#include "hotkeys/HotkeyAction.h"
#include "hotkeys/HotkeyDispatcher.h"
#include <algorithm>
#include <utility>

namespace kestrel {

namespace {

ShortcutBackend::Shortcut shortcutOf(quint32 id, quint32 keyCode, quint32 modifiers)
{
    const auto &actions = hotkeyActions();
    const auto *found = std::ranges::find(actions, id, &HotkeyActionRow::identifier);
    if (found == actions.end())
        return { id, QString::number(id), {}, keyCode, modifiers };
    return { id, found->rawValue, actionLabel(found->action), keyCode, modifiers };
}

} // namespace

GlobalHotkey::GlobalHotkey(HotkeyDispatcher &dispatcher, QString displayName, quint32 keyCode,
                           quint32 modifiers, quint32 id, std::function<void()> action)
    : m_dispatcher(dispatcher)
    , m_displayName(std::move(displayName))
    , m_shortcut(shortcutOf(id, keyCode, modifiers))
    , m_action(std::move(action))
{
}

GlobalHotkey::~GlobalHotkey()
{
    if (m_state != State::Unregistered)
        m_dispatcher.forget(*this);
}

void GlobalHotkey::registerHotkey()
{
    if (m_state == State::Waiting || m_state == State::Registered)
        return;
    if (m_state == State::Refused)
        m_dispatcher.forget(*this); // it comes after what was registered since
    m_state = State::Waiting;
    m_dispatcher.add(*this);
}

void GlobalHotkey::unregisterHotkey()
{
    const State state = std::exchange(m_state, State::Unregistered);
    if (state == State::Unregistered)
        return;
    // the action of a refused one is gone; what stands under its identifier is another's
    if (state == State::Refused)
        m_dispatcher.forget(*this);
    else
        m_dispatcher.remove(*this);
    if (state == State::Registered)
        qCInfo(lcApp).noquote() << "Global hotkey" << m_displayName << "unregistered";
}

void GlobalHotkey::answer(bool isBound)
{
    const State state = std::exchange(m_state, isBound ? State::Registered : State::Refused);
    if (state == m_state)
        return; // the desktop says so once more, with another one's answer
    if (isBound)
        qCInfo(lcApp).noquote() << "Global hotkey" << m_displayName << "registered";
    else
        qCCritical(lcApp).noquote() << "RegisterEventHotKey failed for" << m_displayName
                                    << "(another app may own this shortcut)";
}

} // namespace kestrel
