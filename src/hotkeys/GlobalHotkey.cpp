#include "hotkeys/GlobalHotkey.h"
#include "base/Log.h"
#include "hotkeys/HotkeyAction.h"
#include "hotkeys/HotkeyDispatcher.h"
#include <utility>

namespace kestrel {

GlobalHotkey::GlobalHotkey(HotkeyDispatcher &dispatcher, QString displayName, quint32 keyCode,
                           quint32 modifiers, quint32 id, std::function<void()> action)
    : m_dispatcher(dispatcher)
    , m_displayName(std::move(displayName))
    , m_shortcut { id, {}, {}, keyCode, modifiers }
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
    m_dispatcher.forget(*this);
    m_state = State::Waiting;
    m_dispatcher.add(*this, m_action);
}

void GlobalHotkey::unregisterHotkey()
{
    const State state = std::exchange(m_state, State::Unregistered);
    if (state == State::Unregistered)
        return;
    m_dispatcher.remove(*this);
    if (state == State::Registered)
        qCInfo(lcApp).noquote() << "Global hotkey" << m_displayName << "unregistered";
}

void GlobalHotkey::answer(bool isBound)
{
    if (isBound && m_state == State::Waiting)
        qCInfo(lcApp).noquote() << "Global hotkey" << m_displayName << "registered";
    else if (!isBound)
        qCCritical(lcApp).noquote() << "RegisterEventHotKey failed for" << m_displayName
                                    << "(another app may own this shortcut)";
    m_state = isBound ? State::Registered : State::Refused;
}

} // namespace kestrel
