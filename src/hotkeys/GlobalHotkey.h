#pragma once
#include "platform/ShortcutBackend.h"
#include <QString>
#include <functional>

namespace kestrel {

class HotkeyDispatcher;

/// One shortcut that works whatever program is in front. Unregistered when made; its owner unregisters it
/// before dropping it. Main thread only.
class GlobalHotkey final
{
public:
    /// `displayName` is for log lines, `id` unique among what is registered.
    GlobalHotkey(HotkeyDispatcher &dispatcher, QString displayName, quint32 keyCode, quint32 modifiers,
                 quint32 id, std::function<void()> action);
    ~GlobalHotkey();
    GlobalHotkey(const GlobalHotkey &) = delete;
    GlobalHotkey &operator=(const GlobalHotkey &) = delete;

    /// Asks the desktop for the shortcut; whether it was given shows when the desktop answers. A refused one
    /// stays unregistered until it is registered again. Does nothing while registered or waiting.
    void registerHotkey();
    void unregisterHotkey();

    [[nodiscard]] bool isRegistered() const { return m_state == State::Registered; }

private:
    friend class HotkeyDispatcher;
    enum class State { Unregistered, Waiting, Registered, Refused };

    void answer(bool isBound);

    HotkeyDispatcher &m_dispatcher;
    QString m_displayName;
    ShortcutBackend::Shortcut m_shortcut;
    std::function<void()> m_action;
    State m_state = State::Unregistered;
};

} // namespace kestrel
