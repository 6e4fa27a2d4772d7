#include "hotkeys/KeyRecorder.h"
#include "hotkeys/HotkeyDispatcher.h"
#include "platform/KeyMonitor.h"
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr quint32 escapeKey = 53;
constexpr quint32 deleteKey = 51;
constexpr quint32 shortcutModifiers = Modifier::Command | Modifier::Option | Modifier::Control;

} // namespace

KeyRecorder::KeyRecorder(HotkeyDispatcher &dispatcher, KeyMonitor &monitor, QObject *parent)
    : QObject(parent)
    , m_dispatcher(dispatcher)
    , m_monitor(monitor)
{
    m_suppression.setSingleShot(true);
    m_suppression.setInterval(std::chrono::milliseconds(150));
    connect(&m_suppression, &QTimer::timeout, this, [this] { m_suppressNextTap = false; });
    connect(this, &KeyRecorder::recordingChanged, this, &KeyRecorder::changed);
    connect(this, &KeyRecorder::hotkeyChanged, this, &KeyRecorder::changed);
}

KeyRecorder::~KeyRecorder()
{
    stop();
}

void KeyRecorder::setHotkey(Hotkey hotkey)
{
    if (hotkey == m_hotkey)
        return;
    m_hotkey = hotkey;
    Q_EMIT hotkeyChanged();
}

QStringList KeyRecorder::keyCaps() const
{
    return m_hotkey.isNone() ? QStringList() : m_hotkey.displayParts();
}

QString KeyRecorder::text() const
{
    if (m_recording)
        return qtTrId("settings.hotkey.recording");
    if (m_hotkey.isNone())
        return qtTrId("settings.hotkey.none");
    QStringList words;
    if (m_hotkey.modifiers & Modifier::Control)
        words << qtTrId("settings.hotkey.modifier.control");
    if (m_hotkey.modifiers & Modifier::Option)
        words << qtTrId("settings.hotkey.modifier.option");
    if (m_hotkey.modifiers & Modifier::Shift)
        words << qtTrId("settings.hotkey.modifier.shift");
    if (m_hotkey.modifiers & Modifier::Command)
        words << qtTrId("settings.hotkey.modifier.command");
    words << keyLabel(m_hotkey.keyCode);
    return words.join(u'+');
}

void KeyRecorder::tap()
{
    if (std::exchange(m_suppressNextTap, false))
        m_suppression.stop();
    else if (m_recording)
        stop();
    else
        start();
}

void KeyRecorder::setHeld(bool held)
{
    if (!m_suppressNextTap)
        return;
    // a slow click that ends a recording is one click all the same
    if (held)
        m_suppression.stop();
    else
        m_suppression.start();
}

void KeyRecorder::start()
{
    m_recording = true;
    m_dispatcher.setSuspended(true);
    connect(&m_monitor, &KeyMonitor::keyPressed, this, &KeyRecorder::takeKey);
    connect(&m_monitor, &KeyMonitor::mousePressed, this, &KeyRecorder::takePress);
    m_monitor.start();
    Q_EMIT recordingChanged();
}

void KeyRecorder::stop()
{
    if (!m_recording)
        return;
    m_recording = false;
    m_monitor.stop();
    disconnect(&m_monitor, nullptr, this, nullptr);
    m_dispatcher.setSuspended(false);
    Q_EMIT recordingChanged();
}

void KeyRecorder::takeKey(quint32 keyCode, quint32 modifiers)
{
    if (keyCode == escapeKey)
        stop();
    else if (keyCode == deleteKey)
        record({});
    else if (modifiers & shortcutModifiers)
        record({ keyCode, modifiers & (shortcutModifiers | Modifier::Shift) });
}

void KeyRecorder::takePress()
{
    m_suppressNextTap = true;
    m_suppression.start();
    stop();
}

void KeyRecorder::record(Hotkey hotkey)
{
    setHotkey(hotkey);
    stop();
    Q_EMIT recorded(hotkey);
}

} // namespace kestrel
