#pragma once
#include "hotkeys/HotkeyAction.h"
#include "hotkeys/KeyRecorder.h"
#include <QtQml/qqmlregistration.h>

namespace kestrel {

class Preferences;

/// One action's shortcut: shown, recorded, and brought back to its default. What it is given outlives it.
class ShortcutItem final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the settings' model makes it")
    Q_PROPERTY(QString label READ label NOTIFY changed)
    /// What keeps it from working, or another one: both have the same keys. Empty while all is well.
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(kestrel::KeyRecorder *recorder READ recorder CONSTANT)
public:
    ShortcutItem(HotkeyAction action, Preferences &preferences, HotkeyDispatcher &dispatcher,
                 KeyMonitor &monitor, QObject *parent);

    void retranslate();

    [[nodiscard]] QString label() const;
    [[nodiscard]] QString error() const;
    [[nodiscard]] KeyRecorder *recorder() { return &m_recorder; }

    Q_INVOKABLE void reset();

Q_SIGNALS:
    void changed();

private:
    void follow();

    [[nodiscard]] bool isInUse(HotkeyAction action) const;

    HotkeyAction m_action;
    Preferences &m_preferences;
    KeyRecorder m_recorder;
};

} // namespace kestrel
