#include "platform/linux/QtKeyMonitor.h"
#include "platform/Modifier.h"
#include "platform/linux/KeyPositions.h"
#include <QGuiApplication>
#include <QKeyEvent>
#include <QWindow>
#include <optional>

namespace kestrel {

namespace {

bool isModifier(int key)
{
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Meta:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_CapsLock:
    case Qt::Key_ScrollLock:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
    case Qt::Key_Mode_switch:
    case Qt::Key_Multi_key:
        return true;
    default:
        return false;
    }
}

std::optional<quint32> keyCodeOf(const QKeyEvent &press)
{
    // these two end a recording, wherever the person's layout has put them
    if (press.key() == Qt::Key_Escape)
        return 53;
    if (press.key() == Qt::Key_Backspace)
        return 51;
    if (isModifier(press.key()))
        return {};
    return keyCodeOfXKeycode(press.nativeScanCode());
}

quint32 modifiersOf(Qt::KeyboardModifiers held)
{
    quint32 modifiers = 0;
    if (held.testFlag(Qt::MetaModifier))
        modifiers |= Modifier::Command;
    if (held.testFlag(Qt::ShiftModifier))
        modifiers |= Modifier::Shift;
    if (held.testFlag(Qt::AltModifier))
        modifiers |= Modifier::Option;
    if (held.testFlag(Qt::ControlModifier))
        modifiers |= Modifier::Control;
    return modifiers;
}

} // namespace

QtKeyMonitor::QtKeyMonitor(QObject *parent)
    : KeyMonitor(parent)
{
}

void QtKeyMonitor::start()
{
    m_isRunning = true;
    QCoreApplication::instance()->installEventFilter(this);
}

void QtKeyMonitor::stop()
{
    m_isRunning = false;
    if (m_swallowed.isEmpty())
        QCoreApplication::instance()->removeEventFilter(this);
}

bool QtKeyMonitor::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // accepted, no menu or shortcut of the application takes the key
        event->setAccepted(m_isRunning || event->isAccepted());
        return m_isRunning;
    case QEvent::KeyPress:
        return swallowPress(*static_cast<QKeyEvent *>(event));
    case QEvent::KeyRelease:
        return swallowRelease(*static_cast<QKeyEvent *>(event));
    case QEvent::MouseButtonPress:
        // once for the window, not again for what lies in it
        if (m_isRunning && qobject_cast<QWindow *>(watched))
            Q_EMIT mousePressed();
        return false;
    default:
        return false;
    }
}

bool QtKeyMonitor::swallowPress(const QKeyEvent &press)
{
    const quint32 key = press.nativeScanCode();
    if (press.isAutoRepeat() && (m_isRunning || m_swallowed.contains(key)))
        return true;
    if (!m_isRunning) {
        m_swallowed.remove(key); // it was let go where we could not see it
        return false;
    }
    m_swallowed.insert(key);
    if (const auto keyCode = keyCodeOf(press))
        Q_EMIT keyPressed(*keyCode, modifiersOf(press.modifiers()));
    return true;
}

bool QtKeyMonitor::swallowRelease(const QKeyEvent &release)
{
    const quint32 key = release.nativeScanCode();
    if (!m_swallowed.contains(key))
        return false;
    if (!release.isAutoRepeat())
        m_swallowed.remove(key);
    if (m_swallowed.isEmpty() && !m_isRunning)
        QCoreApplication::instance()->removeEventFilter(this);
    return true;
}

} // namespace kestrel
