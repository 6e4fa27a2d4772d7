#include "platform/linux/SniStatusItemHost.h"
#include "base/Log.h"
#include "platform/linux/BusPeer.h"
#include "platform/linux/DBusServedObject.h"
#include "platform/linux/StatusItemImage.h"
#include "platform/linux/StatusItemMenu.h"
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTextDocument>
#include <QtEndian>
#include <array>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const auto watcherService = u"org.kde.StatusNotifierWatcher"_s;
const auto watcherPath = u"/StatusNotifierWatcher"_s;

/// (iiay): ARGB32 in network byte order
struct IconPixmap
{
    int width = 0;
    int height = 0;
    QByteArray bytes;
};

/// (sa(iiay)ss)
struct ToolTip
{
    QString iconName;
    QList<IconPixmap> pixmaps;
    QString title;
    QString text;
};

QDBusArgument &operator<<(QDBusArgument &argument, const IconPixmap &pixmap)
{
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, IconPixmap &pixmap)
{
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const ToolTip &toolTip)
{
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.pixmaps << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, ToolTip &toolTip)
{
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.pixmaps >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

IconPixmap pixmapOf(const QImage &image)
{
    const QImage plain = image.convertToFormat(QImage::Format_ARGB32);
    IconPixmap pixmap { plain.width(), plain.height(), QByteArray(plain.sizeInBytes(), Qt::Uninitialized) };
    qToBigEndian<quint32>(plain.constBits(), plain.sizeInBytes() / 4, pixmap.bytes.data());
    return pixmap;
}

constexpr QLatin1StringView itemMembers { R"xml(
<method name="Activate"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
<method name="SecondaryActivate"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
<method name="ContextMenu"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
<method name="XAyatanaSecondaryActivate"><arg type="u" direction="in"/></method>
<method name="ProvideXdgActivationToken"><arg type="s" direction="in"/></method>
<method name="Scroll"><arg type="i" direction="in"/><arg type="s" direction="in"/></method>
<signal name="NewTitle"/>
<signal name="NewIcon"/>
<signal name="NewToolTip"/>
<signal name="NewStatus"><arg type="s"/></signal>
<signal name="XAyatanaNewLabel"><arg type="s"/><arg type="s"/></signal>
)xml" };

/// Nothing where no folder can be had: the pixmaps remain.
std::unique_ptr<QTemporaryDir> makeFolder()
{
    for (const auto place : { QStandardPaths::RuntimeLocation, QStandardPaths::GenericCacheLocation }) {
        const QString parent = QStandardPaths::writableLocation(place);
        if (parent.isEmpty() || !QDir().mkpath(parent))
            continue;
        auto folder = std::make_unique<QTemporaryDir>(parent + u"/kestrel-icons-XXXXXX"_s);
        if (folder->isValid())
            return folder;
    }
    return nullptr;
}

/// The widest text that the label may become, for hosts that keep room for it.
QString labelGuide(QString label)
{
    for (QChar &letter : label) {
        if (letter.isDigit())
            letter = u'8';
    }
    return label;
}

} // namespace

PanelHabits panelHabits(const QByteArray &processName)
{
    using enum CountdownPlace;
    using enum ToolTipReading;
    struct Panel
    {
        QByteArrayView prefix; // comm ends after 15 characters
        PanelHabits habits;
    };
    static constexpr std::array panels {
        Panel { "gnome-shell", { Label, Plain, false } }, // with its AppIndicator extension
        Panel { "notification-ar", { Label, Markup, true } }, // mate-panel's notification-area-applet
        Panel { "mate-panel", { Label, Markup, true } },
        Panel { "ayatana-indicat", { Label, Plain, false } }, // ayatana-indicator-application
        Panel { "waybar", { Icon, Markup, false } },
        Panel { "lxqt-panel", { CountdownPlace::ToolTip, Guessed, false } },
    };
    for (const Panel &panel : panels) {
        if (processName.startsWith(panel.prefix))
            return panel.habits;
    }
    // Plasma, xfce4-panel and the unknown
    return {};
}

/// What the panel reads. Says only what changed.
class SniStatusItemHost::Item final : public DBusServedObject
{
public:
    Item(QDBusConnection bus, SniStatusItemHost &host)
        : DBusServedObject(std::move(bus), u"/StatusNotifierItem"_s, u"org.kde.StatusNotifierItem"_s,
                           itemMembers)
        , m_host(host)
        , m_state(host.m_state)
    {
        qDBusRegisterMetaType<IconPixmap>();
        qDBusRegisterMetaType<QList<IconPixmap>>();
        qDBusRegisterMetaType<ToolTip>();
    }

    /// After the host's state changed from `before`.
    void announceChanges(const StatusItemState &before)
    {
        const bool isPainted = m_host.m_habits.place == CountdownPlace::Icon;
        const bool isOtherLabel = before.label != m_state.label;
        if (before.symbol != m_state.symbol || before.svg != m_state.svg || (isPainted && isOtherLabel))
            repaint();
        if (before.toolTip != m_state.toolTip) {
            announce(u"NewTitle"_s);
            announce(u"NewToolTip"_s);
        }
        if (isOtherLabel)
            announce(u"XAyatanaNewLabel"_s, { m_state.label, labelGuide(m_state.label) });
    }

    void repaint()
    {
        m_pixmaps.clear();
        announce(u"NewIcon"_s);
    }

protected:
    [[nodiscard]] QVariantMap properties() const override
    {
        const QString title = m_state.toolTip.isEmpty() ? u"Kestrel"_s : m_state.toolTip;
        // a named icon goes before the pixmaps, which alone can hold the countdown
        const bool isPainted = m_host.m_habits.place == CountdownPlace::Icon && !m_state.label.isEmpty();
        const auto none = QVariant::fromValue(QList<IconPixmap>());
        QVariantMap all {
            { u"Category"_s, u"ApplicationStatus"_s },
            { u"Id"_s, u"kestrel"_s },
            { u"Title"_s, title },
            { u"Status"_s, u"Active"_s },
            { u"WindowId"_s, 0 },
            { u"IconThemePath"_s, m_host.m_folder ? m_host.m_folder->path() : QString() },
            { u"IconName"_s, isPainted ? QString() : iconName() },
            { u"IconPixmap"_s, QVariant::fromValue(pixmaps()) },
            { u"OverlayIconName"_s, QString() },
            { u"OverlayIconPixmap"_s, none },
            { u"AttentionIconName"_s, QString() },
            { u"AttentionIconPixmap"_s, none },
            { u"AttentionMovieName"_s, QString() },
            { u"ToolTip"_s, QVariant::fromValue(ToolTip { {}, {}, toolTipText(title), {} }) },
            { u"ItemIsMenu"_s, false },
            { u"Menu"_s, QVariant::fromValue(QDBusObjectPath(StatusItemMenu::path)) },
        };
        // MATE draws a label that exists instead of the icon, even an empty one
        if (!m_state.label.isEmpty()) {
            all[u"XAyatanaLabel"_s] = m_state.label;
            all[u"XAyatanaLabelGuide"_s] = labelGuide(m_state.label);
        }
        return all;
    }

    std::optional<QVariantList> call(const QString &method, const QVariantList &arguments) override
    {
        if (method == "Activate(ii)"_L1 || method == "SecondaryActivate(ii)"_L1
            || method == "ContextMenu(ii)"_L1) {
            // the answer goes out before whatever the click sets off
            QMetaObject::invokeMethod(
                &m_host,
                [&host = m_host, position = QPoint(arguments[0].toInt(), arguments[1].toInt())] {
                    Q_EMIT host.activated(position);
                },
                Qt::QueuedConnection);
            return QVariantList();
        }
        if (method == "XAyatanaSecondaryActivate(u)"_L1 || method == "ProvideXdgActivationToken(s)"_L1
            || method == "Scroll(is)"_L1)
            return QVariantList();
        return std::nullopt;
    }

private:
    [[nodiscard]] QColor foreground() const { return panelForeground(m_host.m_appearance.isDark()); }

    /// The icon's name in the private folder, where its file is written when it is first asked for.
    [[nodiscard]] QString iconName() const
    {
        if (!m_host.m_folder || m_state.svg.isEmpty())
            return {};
        // panels that do not recolour it take it as it is, and keep what they loaded by the name
        QString name = u"kestrel-%1-%2-symbolic"_s.arg(QString(m_state.symbol).replace(u'.', u'-'),
                                                       m_host.m_appearance.isDark() ? "light"_L1 : "dark"_L1);
        QFile file(m_host.m_folder->filePath(name + u".svg"_s));
        if (file.exists())
            return name;
        const QByteArray drawing = symbolicSvg(m_state.svg, foreground());
        if (drawing.isEmpty() || !file.open(QIODevice::WriteOnly) || file.write(drawing) != drawing.size()) {
            file.remove();
            return {};
        }
        return name;
    }

    [[nodiscard]] const QList<IconPixmap> &pixmaps() const
    {
        if (m_pixmaps.isEmpty() && !m_state.svg.isEmpty()) {
            const QString label = m_host.m_habits.place == CountdownPlace::Icon ? m_state.label : QString();
            for (const int height : { 16, 22, 24, 32, 48 })
                m_pixmaps << pixmapOf(statusItemImage(m_state.svg, label, height, foreground()));
        }
        return m_pixmaps;
    }

    [[nodiscard]] QString toolTipText(const QString &title) const
    {
        switch (m_host.m_habits.reading) {
        case ToolTipReading::Markup:
            return title.toHtmlEscaped();
        case ToolTipReading::Guessed:
            return Qt::mightBeRichText(title) ? title.toHtmlEscaped() : title;
        case ToolTipReading::Plain:
            break;
        }
        return title;
    }

    SniStatusItemHost &m_host;
    const StatusItemState &m_state;
    mutable QList<IconPixmap> m_pixmaps;
};

SniStatusItemHost::SniStatusItemHost(const Appearance &appearance)
    : m_bus(QDBusConnection::sessionBus())
    , m_itemBus(QString())
    , m_appearance(appearance)
{
}

SniStatusItemHost::~SniStatusItemHost()
{
    dropItem();
}

void SniStatusItemHost::show(const StatusItemState &state)
{
    const StatusItemState before = std::exchange(m_state, state);
    if (!m_item) {
        m_folder = makeFolder();
        makeItem();
        start();
    } else if (m_habits.keepsLabel && !before.label.isEmpty() && state.label.isEmpty()) {
        dropItem();
        makeItem();
        registerItem();
    } else {
        m_item->announceChanges(before);
        m_menu->setEntries(state.menu);
    }
}

StatusItemCondition SniStatusItemHost::condition() const
{
    if (!m_isHosted)
        return {};
    return { StatusItemCondition::Host::Panel, m_panel, m_habits.place };
}

void SniStatusItemHost::makeItem()
{
    m_itemBus = QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                              u"kestrel status item %1"_s.arg(++m_itemCount));
    m_item = std::make_unique<Item>(m_itemBus, *this);
    m_menu = std::make_unique<StatusItemMenu>(m_itemBus);
    connect(m_menu.get(), &StatusItemMenu::triggered, this, &StatusItemHost::menuTriggered,
            Qt::QueuedConnection);
    m_menu->setEntries(m_state.menu);
}

void SniStatusItemHost::dropItem()
{
    m_menu.reset();
    m_item.reset();
    QDBusConnection::disconnectFromBus(m_itemBus.name());
}

void SniStatusItemHost::start()
{
    connect(&m_appearance, &Appearance::changed, this, [this, wasDark = m_appearance.isDark()]() mutable {
        if (std::exchange(wasDark, m_appearance.isDark()) != m_appearance.isDark())
            m_item->repaint();
    });
    m_watchers.setConnection(m_bus);
    m_watchers.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    m_watchers.addWatchedService(watcherService);
    connect(&m_watchers, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString & /*service*/, const QString & /*before*/, const QString &owner) {
                if (owner.isEmpty())
                    setHosted(false);
                else
                    meetWatcher();
            });
    // from anyone: to name the sender would wait for the bus to say who that is now
    m_bus.connect(QString(), watcherPath, watcherService, u"StatusNotifierHostRegistered"_s, this,
                  SLOT(registerItem()));
    m_bus.connect(QString(), watcherPath, watcherService, u"StatusNotifierHostUnregistered"_s, this,
                  SLOT(askForHosts()));
    meetWatcher();
}

void SniStatusItemHost::meetWatcher()
{
    // Who it is comes first, since the panel reads the item as soon as it is registered. Asking starts no
    // service, and fails where there is no watcher.
    ask(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                       u"org.freedesktop.DBus"_s, u"GetConnectionUnixProcessID"_s)
            << watcherService,
        &SniStatusItemHost::takeProcessId);
}

void SniStatusItemHost::takeProcessId(const QDBusMessage &answer)
{
    if (answer.type() == QDBusMessage::ErrorMessage)
        return;
    m_panel = processName(answer.arguments().value(0).toUInt());
    m_habits = panelHabits(m_panel.toUtf8());
    m_item->repaint();
    registerItem();
}

void SniStatusItemHost::registerItem()
{
    ask(QDBusMessage::createMethodCall(watcherService, watcherPath, watcherService,
                                       u"RegisterStatusNotifierItem"_s)
            << m_itemBus.baseService(),
        &SniStatusItemHost::takeRegistration);
    askForHosts();
}

void SniStatusItemHost::takeRegistration(const QDBusMessage &answer)
{
    if (answer.type() == QDBusMessage::ErrorMessage)
        qCWarning(lcMenubar) << "the panel did not take the status item:"
                             << errorForLog(answer.errorMessage());
}

void SniStatusItemHost::askForHosts()
{
    ask(QDBusMessage::createMethodCall(watcherService, watcherPath, u"org.freedesktop.DBus.Properties"_s,
                                       u"Get"_s)
            << watcherService << u"IsStatusNotifierHostRegistered"_s,
        &SniStatusItemHost::takeHosts);
}

void SniStatusItemHost::takeHosts(const QDBusMessage &answer)
{
    setHosted(answer.type() == QDBusMessage::ReplyMessage
              && answer.arguments().value(0).value<QDBusVariant>().variant().toBool());
}

void SniStatusItemHost::ask(QDBusMessage call, void (SniStatusItemHost::*answered)(const QDBusMessage &))
{
    call.setAutoStartService(false);
    auto *pending = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending, answered] {
        pending->deleteLater();
        (this->*answered)(pending->reply());
    });
}

void SniStatusItemHost::setHosted(bool isHosted)
{
    if (std::exchange(m_isHosted, isHosted) != isHosted)
        Q_EMIT hostedChanged();
}

} // namespace kestrel
