#pragma once
#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QProcess>
#include <QTest>
#include <xcb/xcb.h>

namespace kestrel {

/// Plays the person, on the keyboard and with the mouse of the X server.
inline void xdotool(const QString &arguments)
{
    QCOMPARE(QProcess::execute(QStringLiteral("xdotool"), arguments.split(QLatin1Char(' '))), 0);
}

/// Counts the presses of keys that reach this program at all, repeated ones too, and lets them through.
class PressCount final : public QAbstractNativeEventFilter
{
public:
    PressCount() { QCoreApplication::instance()->installNativeEventFilter(this); }
    bool nativeEventFilter(const QByteArray & /*type*/, void *message, qintptr * /*result*/) override
    {
        const auto *event = static_cast<const xcb_generic_event_t *>(message);
        seen += (event->response_type & 0x7f) == XCB_KEY_PRESS ? 1 : 0;
        return false;
    }

    int seen = 0;
};

} // namespace kestrel
