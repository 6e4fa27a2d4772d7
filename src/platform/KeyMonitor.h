#pragma once
#include <QObject>

namespace kestrel {

/// Listens to the keys and presses of the application's own windows, for recording a shortcut.
class KeyMonitor : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// From now on no key reaches any window of the application; presses do.
    virtual void start() = 0;
    virtual void stop() = 0;

Q_SIGNALS:
    /// A key went down, modifier keys themselves aside. `keyCode` stands for the position on the US keyboard,
    /// `modifiers` are the bits of Modifier (platform/Modifier.h).
    void keyPressed(quint32 keyCode, quint32 modifiers);
    void mousePressed();
};

} // namespace kestrel
