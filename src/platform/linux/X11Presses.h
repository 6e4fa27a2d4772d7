#pragma once
#include "platform/linux/X11.h"
#include <QObject>
#include <QSocketNotifier>

namespace kestrel {

/// Hears every press of a mouse button or a finger on the X server, whoever it is meant for, as long as it
/// exists. Has a connection of its own, so that the raw events never pass through Qt. Main thread only.
class X11Presses final : public QObject
{
    Q_OBJECT
public:
    explicit X11Presses(QObject *parent = nullptr);
    ~X11Presses() override;
    X11Presses(const X11Presses &) = delete;
    X11Presses &operator=(const X11Presses &) = delete;

Q_SIGNALS:
    void pressed();

private:
    void read();

    xcb_connection_t *m_connection;
    quint8 m_extension = 0;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace kestrel
