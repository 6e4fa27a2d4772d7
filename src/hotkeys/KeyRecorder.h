#pragma once
#include "hotkeys/Hotkey.h"
#include <QObject>
#include <QStringList>
#include <QTimer>

namespace kestrel {

class HotkeyDispatcher;
class KeyMonitor;

/// One shortcut that a person sets by typing it. Whoever owns it gives it the shortcut to show and stores
/// what `recorded` says. Dispatcher and monitor outlive it; recorders share them, since only one records at a
/// time. Main thread only.
class KeyRecorder final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool recording READ isRecording NOTIFY recordingChanged)
    Q_PROPERTY(QStringList keyCaps READ keyCaps NOTIFY hotkeyChanged)
    Q_PROPERTY(QString text READ text NOTIFY changed)
public:
    KeyRecorder(HotkeyDispatcher &dispatcher, KeyMonitor &monitor, QObject *parent = nullptr);
    ~KeyRecorder() override;

    [[nodiscard]] Hotkey hotkey() const { return m_hotkey; }
    void setHotkey(Hotkey hotkey);

    [[nodiscard]] bool isRecording() const { return m_recording; }
    /// What is drawn side by side; none without a shortcut.
    [[nodiscard]] QStringList keyCaps() const;
    /// The shortcut in words ("Ctrl+Alt+M"), or that there is none, or that one is being recorded.
    [[nodiscard]] QString text() const;

    /// A click, or what stands for one on the keyboard.
    Q_INVOKABLE void tap();
    /// The control is held down: the click that a press may become comes when it is let go.
    Q_INVOKABLE void setHeld(bool held);
    /// The control leaves the screen, or its window is not the one that is typed into any more.
    Q_INVOKABLE void stop();

Q_SIGNALS:
    void recordingChanged();
    void hotkeyChanged();
    void changed(); ///< either of them
    /// The person chose another shortcut, or none.
    void recorded(kestrel::Hotkey hotkey);

private:
    void start();
    void takeKey(quint32 keyCode, quint32 modifiers);
    void takePress();
    void record(Hotkey hotkey);

    HotkeyDispatcher &m_dispatcher;
    KeyMonitor &m_monitor;
    Hotkey m_hotkey;
    bool m_recording = false;
    bool m_suppressNextTap = false; ///< a press ended a recording; the click it may become starts none
    QTimer m_suppression { this }; ///< for how long
};

} // namespace kestrel
