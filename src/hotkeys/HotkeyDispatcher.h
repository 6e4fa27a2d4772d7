#pragma once
#include "platform/ShortcutBackend.h"
#include <QHash>
#include <QList>
#include <QObject>
#include <functional>

namespace kestrel {

class GlobalHotkey;

/// A shortcut that was asked for, and what the desktop said.
struct HotkeyRegistration
{
    enum class State { Waiting, Registered, Refused };

    ShortcutBackend::Shortcut shortcut;
    State state = State::Waiting;
};

/// Brings the registered shortcuts to the desktop and their presses to what they do. What one turn of the
/// event loop registers and unregisters goes to the desktop as one set when the turn ends, and not at all
/// when it is the set that is there already and was taken whole. Owned by app/; the backend outlives it, and
/// it outlives every GlobalHotkey. Main thread only.
class HotkeyDispatcher final : public QObject
{
    Q_OBJECT
public:
    explicit HotkeyDispatcher(ShortcutBackend &backend);

    /// While a shortcut is being recorded: no registered one takes its key away from the recorder.
    void setSuspended(bool suspended) { m_backend.setSuspended(suspended); }

    /// In order of registration.
    [[nodiscard]] QList<HotkeyRegistration> registrations() const;
    [[nodiscard]] ShortcutBackend::Kind backend() const { return m_backend.kind(); }

private:
    friend class GlobalHotkey;

    void add(GlobalHotkey &hotkey);
    /// The hotkey and whatever action stands under its identifier.
    void remove(GlobalHotkey &hotkey);
    /// The hotkey alone.
    void forget(GlobalHotkey &hotkey);

    void bindLater();
    void bind();
    void takeAnswer(const QList<ShortcutBackend::Outcome> &outcomes);
    void tell(const QList<ShortcutBackend::Outcome> &outcomes);
    void runLater(quint32 id);

    ShortcutBackend &m_backend;
    QHash<quint32, std::function<void()>> m_actions;
    QList<GlobalHotkey *> m_hotkeys; ///< all but the unregistered, in order of registration
    QList<ShortcutBackend::Shortcut> m_bound; ///< the last set that went to the desktop
    QList<ShortcutBackend::Outcome> m_outcomes; ///< what it answered to it; empty while it has not
    bool m_isBindingPlanned = false;
};

} // namespace kestrel
