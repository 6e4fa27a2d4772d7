#include "platform/linux/XEmbedStatusItem.h"
#include "platform/linux/StatusItemImage.h"
#include <QGuiApplication>
#include <QPainter>
#include <array>
#include <cstdlib>
#include <utility>

namespace kestrel {

namespace {

template<typename Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply *reply)
{
    return { reply, &std::free };
}

const xcb_screen_t *screenOf(xcb_connection_t *connection, int number)
{
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 0 && number > 0; --number)
        xcb_screen_next(&screens);
    return screens.rem > 0 ? screens.data : nullptr;
}

quint8 depthOf(const xcb_screen_t &screen, xcb_visualid_t visual)
{
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem > 0; xcb_depth_next(&depths)) {
        auto visuals = xcb_depth_visuals_iterator(depths.data);
        for (; visuals.rem > 0; xcb_visualtype_next(&visuals)) {
            if (visuals.data->visual_id == visual)
                return depths.data->depth;
        }
    }
    return 0;
}

constexpr quint32 requestDock = 0; // SYSTEM_TRAY_REQUEST_DOCK
constexpr std::array<quint32, 2> embeddingVersionAndMapped { 0, 1 };

} // namespace

std::unique_ptr<XEmbedStatusItem> XEmbedStatusItem::create(const Appearance &appearance)
{
    int number = 0;
    Connection connection(xcb_connect(nullptr, &number));
    if (xcb_connection_has_error(connection.get()) != 0)
        return nullptr;
    const xcb_screen_t *screen = screenOf(connection.get(), number);
    // what is drawn below are pixels of four bytes
    if (!screen || (screen->root_depth != 24 && screen->root_depth != 32))
        return nullptr;
    return std::unique_ptr<XEmbedStatusItem>(
        new XEmbedStatusItem(std::move(connection), *screen, number, appearance));
}

XEmbedStatusItem::XEmbedStatusItem(Connection connection, const xcb_screen_t &screen, int screenNumber,
                                   const Appearance &appearance)
    : m_connection(std::move(connection))
    , m_screen(screen)
    , m_appearance(appearance)
    , m_notifier(xcb_get_file_descriptor(m_connection.get()), QSocketNotifier::Read)
    , m_atoms { atom("_NET_SYSTEM_TRAY_S" + QByteArray::number(screenNumber)),
                atom("_NET_SYSTEM_TRAY_OPCODE"), atom("_NET_SYSTEM_TRAY_VISUAL"), atom("MANAGER"),
                atom("_XEMBED_INFO") }
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &XEmbedStatusItem::readEvents);
    connect(&m_appearance, &Appearance::changed, this, [this] {
        paint();
        readEvents();
    });
    // a tray that comes says so on the root window
    const quint32 mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection.get(), m_screen.root, XCB_CW_EVENT_MASK, &mask);
}

XEmbedStatusItem::~XEmbedStatusItem() = default;

xcb_atom_t XEmbedStatusItem::atom(const QByteArray &name)
{
    const auto cookie =
        xcb_intern_atom(m_connection.get(), 0, static_cast<quint16>(name.size()), name.data());
    const auto reply = owned(xcb_intern_atom_reply(m_connection.get(), cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

void XEmbedStatusItem::show(const StatusItemState &state)
{
    m_state = state;
    if (m_window == XCB_WINDOW_NONE) {
        dock();
    } else {
        claimWidth();
        paint();
    }
    readEvents();
}

void XEmbedStatusItem::dock()
{
    const auto cookie = xcb_get_selection_owner(m_connection.get(), m_atoms.selection);
    const auto owner = owned(xcb_get_selection_owner_reply(m_connection.get(), cookie, nullptr));
    if (!owner || owner->owner == XCB_WINDOW_NONE)
        return;
    leave();
    m_tray = owner->owner;
    const quint32 mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection.get(), m_tray, XCB_CW_EVENT_MASK, &mask);
    createWindow(trayVisual());

    xcb_client_message_event_t message {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = m_tray;
    message.type = m_atoms.opcode;
    message.data.data32[0] = XCB_CURRENT_TIME;
    message.data.data32[1] = requestDock;
    message.data.data32[2] = m_window;
    xcb_send_event(m_connection.get(), 0, m_tray, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char *>(&message));
    xcb_flush(m_connection.get());
}

void XEmbedStatusItem::leave()
{
    if (m_window != XCB_WINDOW_NONE) {
        xcb_free_gc(m_connection.get(), m_context);
        xcb_destroy_window(m_connection.get(), m_window);
        xcb_free_colormap(m_connection.get(), m_colormap);
        xcb_flush(m_connection.get());
    }
    m_window = XCB_WINDOW_NONE;
    m_tray = XCB_WINDOW_NONE;
    m_size = { 24, 24 };
    m_isDocked = false;
}

xcb_visualid_t XEmbedStatusItem::trayVisual()
{
    const auto cookie =
        xcb_get_property(m_connection.get(), 0, m_tray, m_atoms.visual, XCB_ATOM_VISUALID, 0, 1);
    const auto reply = owned(xcb_get_property_reply(m_connection.get(), cookie, nullptr));
    if (reply && xcb_get_property_value_length(reply.get()) == 4) {
        const auto visual = *static_cast<const xcb_visualid_t *>(xcb_get_property_value(reply.get()));
        if (depthOf(m_screen, visual) == 32)
            return visual;
    }
    return m_screen.root_visual;
}

void XEmbedStatusItem::createWindow(xcb_visualid_t visual)
{
    m_depth = depthOf(m_screen, visual);
    m_isTranslucent = m_depth == 32;
    m_colormap = xcb_generate_id(m_connection.get());
    xcb_create_colormap(m_connection.get(), XCB_COLORMAP_ALLOC_NONE, m_colormap, m_screen.root, visual);
    m_window = xcb_generate_id(m_connection.get());
    const std::array<quint32, 4> values { 0U, 0U,
                                          XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY
                                              | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE,
                                          m_colormap };
    xcb_create_window(
        m_connection.get(), m_depth, m_window, m_screen.root, 0, 0, static_cast<quint16>(m_size.width()),
        static_cast<quint16>(m_size.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP, values.data());
    m_context = xcb_generate_id(m_connection.get());
    xcb_create_gc(m_connection.get(), m_context, m_window, 0, nullptr);

    const auto setText = [this](xcb_atom_t property, const QByteArray &text) {
        xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, m_window, property, XCB_ATOM_STRING, 8,
                            static_cast<quint32>(text.size()), text.data());
    };
    setText(XCB_ATOM_WM_NAME, "Kestrel");
    setText(XCB_ATOM_WM_CLASS, QByteArray("kestrel\0Kestrel\0", 16));
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, m_window, m_atoms.embedding,
                        m_atoms.embedding, 32, 2, embeddingVersionAndMapped.data());
    claimWidth();
}

void XEmbedStatusItem::readEvents()
{
    // what waits in the connection's own queue does not wake the notifier again
    while (const auto event = owned(xcb_poll_for_event(m_connection.get())))
        take(*event);
    if (xcb_connection_has_error(m_connection.get()) != 0)
        m_notifier.setEnabled(false);
}

void XEmbedStatusItem::take(const xcb_generic_event_t &event)
{
    const auto as = [&event]<typename Event>(Event &&) -> const Event & {
        return reinterpret_cast<const Event &>(event);
    };
    switch (event.response_type & 0x7F) {
    case XCB_CLIENT_MESSAGE: {
        const auto &message = as(xcb_client_message_event_t());
        if (message.type == m_atoms.manager && message.data.data32[1] == m_atoms.selection)
            dock();
        break;
    }
    case XCB_DESTROY_NOTIFY: {
        const auto window = as(xcb_destroy_notify_event_t()).window;
        if (window == m_tray || window == m_window)
            leave();
        break;
    }
    case XCB_REPARENT_NOTIFY: {
        const auto &moved = as(xcb_reparent_notify_event_t());
        if (moved.window != m_window)
            break;
        const bool wasDocked = std::exchange(m_isDocked, moved.parent != m_screen.root);
        if (!m_isDocked) {
            // the tray is going and gave its windows back; the next one says when it is there
            leave();
            break;
        }
        const quint32 parentRelative = XCB_BACK_PIXMAP_PARENT_RELATIVE;
        if (!m_isTranslucent)
            xcb_change_window_attributes(m_connection.get(), m_window, XCB_CW_BACK_PIXMAP, &parentRelative);
        xcb_map_window(m_connection.get(), m_window);
        xcb_flush(m_connection.get());
        if (!wasDocked)
            Q_EMIT docked();
        break;
    }
    case XCB_CONFIGURE_NOTIFY: {
        const auto &configured = as(xcb_configure_notify_event_t());
        const QSize size(configured.width, configured.height);
        if (configured.window != m_window || size == m_size)
            break;
        const bool isOtherHeight = size.height() != m_size.height();
        m_size = size;
        if (isOtherHeight)
            claimWidth();
        paint();
        break;
    }
    case XCB_EXPOSE:
        if (as(xcb_expose_event_t()).count == 0)
            paint();
        break;
    case XCB_BUTTON_RELEASE: {
        const auto &click = as(xcb_button_release_event_t());
        if (click.detail >= XCB_BUTTON_INDEX_1 && click.detail <= XCB_BUTTON_INDEX_3)
            Q_EMIT activated(QPoint(click.root_x, click.root_y) / qGuiApp->devicePixelRatio());
        break;
    }
    default:
        break;
    }
}

void XEmbedStatusItem::claimWidth()
{
    const QImage wanted = statusItemImage(m_state.svg, m_state.label, m_size.height(), panelForeground(true));
    const auto width = static_cast<quint32>(std::max(wanted.width(), m_size.height()));
    // WM_NORMAL_HINTS with a least size alone: 1 << 4 is PMinSize
    std::array<quint32, 18> hints {};
    hints[0] = 1U << 4;
    hints[5] = width;
    hints[6] = static_cast<quint32>(m_size.height());
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, static_cast<quint32>(hints.size()), hints.data());
    if (static_cast<int>(width) != m_size.width())
        xcb_configure_window(m_connection.get(), m_window, XCB_CONFIG_WINDOW_WIDTH, &width);
    xcb_flush(m_connection.get());
}

void XEmbedStatusItem::paint()
{
    if (!m_isDocked || m_size.isEmpty())
        return;
    const auto width = static_cast<quint16>(m_size.width());
    const auto height = static_cast<quint16>(m_size.height());
    QImage surface(m_size, QImage::Format_ARGB32_Premultiplied);
    surface.fill(Qt::transparent);
    bool isDark = m_appearance.isDark();
    if (!m_isTranslucent) {
        // the tray's own background shows through where nothing is drawn
        xcb_clear_area(m_connection.get(), 0, m_window, 0, 0, 0, 0);
        const auto cookie =
            xcb_get_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_window, 0, 0, width, height, ~0U);
        const auto behind = owned(xcb_get_image_reply(m_connection.get(), cookie, nullptr));
        if (behind && xcb_get_image_data_length(behind.get()) == surface.sizeInBytes()) {
            surface = QImage(xcb_get_image_data(behind.get()), width, height, QImage::Format_RGB32)
                          .convertToFormat(QImage::Format_ARGB32_Premultiplied);
            // small trays have colours of their own, whatever the desktop prefers
            isDark = qGray(surface.pixel(0, 0)) < 128;
        }
    }
    const QColor color = panelForeground(isDark);
    QImage image = statusItemImage(m_state.svg, m_state.label, height, color);
    // a tray of square places has none for the countdown
    if (image.width() > width)
        image = statusItemImage(m_state.svg, {}, std::min(width, height), color);
    QPainter painter(&surface);
    painter.drawImage((width - image.width()) / 2, (height - image.height()) / 2, image);
    painter.end();
    xcb_put_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_window, m_context, width, height, 0, 0, 0,
                  m_depth, static_cast<quint32>(surface.sizeInBytes()), surface.constBits());
    xcb_flush(m_connection.get());
}

} // namespace kestrel
