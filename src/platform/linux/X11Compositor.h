#pragma once
#include <QAbstractNativeEventFilter>
#include <QObject>
#include <xcb/xcb.h>

namespace kestrel {

/// Whether a compositor runs on the X screen, live: it owns a selection, and XFixes tells who takes that.
/// Without X11 one always does. Main thread only.
class X11Compositor final : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT
public:
    explicit X11Compositor(QObject *parent = nullptr);
    ~X11Compositor() override;

    [[nodiscard]] bool isRunning() const { return m_isRunning; }

Q_SIGNALS:
    void isRunningChanged();

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    [[nodiscard]] bool hasOwner() const;

    xcb_atom_t m_selection = XCB_ATOM_NONE;
    quint8 m_notification = 0; ///< the event's number on this server; 0 without XFixes
    bool m_isRunning = true;
};

} // namespace kestrel
