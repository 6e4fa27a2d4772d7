#pragma once
#include "platform/Appearance.h"
#include "platform/StatusItemHost.h"
#include <QObject>
#include <QSize>
#include <QSocketNotifier>
#include <memory>
#include <xcb/xcb.h>

namespace kestrel {

/// A small X window that asks the owner of _NET_SYSTEM_TRAY_S<n> to dock it (System Tray Protocol, XEMBED):
/// now, and whenever a tray comes. Speaks X through a connection of its own, so that Qt's may be to a Wayland
/// compositor. Main thread only; `appearance` outlives it.
class XEmbedStatusItem final : public QObject
{
    Q_OBJECT
public:
    /// Nothing where no X server answers.
    [[nodiscard]] static std::unique_ptr<XEmbedStatusItem> create(const Appearance &appearance);
    ~XEmbedStatusItem() override;

    void show(const StatusItemState &state);
    [[nodiscard]] bool isDocked() const { return m_isDocked; }

Q_SIGNALS:
    void activated(QPoint position);
    void docked();

private:
    struct Disconnect
    {
        void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
    };
    using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;
    struct Atoms
    {
        xcb_atom_t selection = XCB_ATOM_NONE;
        xcb_atom_t opcode = XCB_ATOM_NONE;
        xcb_atom_t visual = XCB_ATOM_NONE;
        xcb_atom_t manager = XCB_ATOM_NONE;
        xcb_atom_t embedding = XCB_ATOM_NONE;
    };

    XEmbedStatusItem(Connection connection, const xcb_screen_t &screen, int screenNumber,
                     const Appearance &appearance);

    [[nodiscard]] xcb_atom_t atom(const QByteArray &name);
    void dock();
    void leave();
    void createWindow(xcb_visualid_t visual);
    [[nodiscard]] xcb_visualid_t trayVisual();
    void readEvents();
    void take(const xcb_generic_event_t &event);
    void claimWidth();
    void paint();

    Connection m_connection;
    const xcb_screen_t &m_screen;
    const Appearance &m_appearance;
    QSocketNotifier m_notifier;
    Atoms m_atoms;
    StatusItemState m_state;
    xcb_window_t m_tray = XCB_WINDOW_NONE;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_colormap_t m_colormap = XCB_NONE;
    xcb_gcontext_t m_context = XCB_NONE;
    QSize m_size { 24, 24 };
    quint8 m_depth = 0;
    bool m_isTranslucent = false;
    bool m_isDocked = false;
};

} // namespace kestrel
