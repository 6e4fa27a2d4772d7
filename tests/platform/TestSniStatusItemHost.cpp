#include "platform/linux/DesktopStatusItemHost.h"
#include "support/FakeAppearance.h"
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>
#include <sys/prctl.h>

using namespace kestrel;
using namespace Qt::StringLiterals;

namespace {

const auto watcherName = u"org.kde.StatusNotifierWatcher"_s;
const auto watcherPath = u"/StatusNotifierWatcher"_s;
const auto itemInterface = u"org.kde.StatusNotifierItem"_s;
const auto menuInterface = u"com.canonical.dbusmenu"_s;

StatusItemState stateWith(const QString &label)
{
    return { u"circle"_s,
             "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 24 24'><circle r='9'/></svg>",
             label,
             u"R&D <b>sync</b>"_s,
             { { u"open"_s, u"Open"_s, true },
               { {}, {}, true },
               { u"join"_s, u"Join R_D"_s, false },
               { u"quit"_s, u"Quit"_s, true } } };
}

/// A panel with the watcher's name, on a connection of its own; items register as long as it lives.
class FakePanel final : public QDBusVirtualObject
{
    Q_OBJECT
public:
    explicit FakePanel(const char *processName = "somepanel")
    {
        // /proc/<pid>/comm of this very process
        prctl(PR_SET_NAME, processName);
        bus.registerVirtualObject(watcherPath, this);
        // not bus.interface(), whose object Qt 6.4 loses with its connection
        QDBusMessage request =
            QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                           u"org.freedesktop.DBus"_s, u"RequestName"_s);
        request << watcherName << 0U;
        bus.call(request);
        bus.connect({}, u"/StatusNotifierItem"_s, itemInterface, {}, this, SLOT(note(QDBusMessage)));
        bus.connect({}, u"/MenuBar"_s, menuInterface, {}, this, SLOT(note(QDBusMessage)));
    }
    ~FakePanel() override { QDBusConnection::disconnectFromBus(bus.name()); }

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        if (message.member() == "RegisterStatusNotifierItem"_L1) {
            items << message.arguments().first().toString();
            connection.send(message.createReply());
        } else {
            connection.send(message.createReply(QVariant::fromValue(QDBusVariant(hasHost))));
        }
        return true;
    }

    void letHostCome()
    {
        hasHost = true;
        bus.send(QDBusMessage::createSignal(watcherPath, watcherName, u"StatusNotifierHostRegistered"_s));
    }

    [[nodiscard]] QDBusMessage call(const QString &path, const QString &interface, const QString &method,
                                    const QVariantList &arguments) const
    {
        QDBusMessage message = QDBusMessage::createMethodCall(items.last(), path, interface, method);
        message.setArguments(arguments);
        return bus.call(message, QDBus::BlockWithGui);
    }
    [[nodiscard]] QVariantMap properties() const
    {
        const QDBusReply<QVariantMap> reply = call(
            u"/StatusNotifierItem"_s, u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s, { itemInterface });
        return reply.value();
    }

    QDBusConnection bus =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"panel %1"_s.arg(++count));
    QStringList items;
    QStringList signalled;
    bool hasHost = true;

public Q_SLOTS:
    void note(const QDBusMessage &message) { signalled << message.member(); }

private:
    static inline int count = 0;
};

/// The sizes of an a(iiay) as "16x16 22x22".
QString sizesOf(const QVariant &pixmaps)
{
    const auto argument = pixmaps.value<QDBusArgument>();
    QStringList sizes;
    argument.beginArray();
    while (!argument.atEnd()) {
        int width = 0;
        int height = 0;
        QByteArray bytes;
        argument.beginStructure();
        argument >> width >> height >> bytes;
        argument.endStructure();
        sizes << (bytes.size() != 4 * qsizetype(width) * height ? u"broken"_s
                      : width > height                          ? u"wide"_s
                                                                : QString::number(width));
    }
    argument.endArray();
    return sizes.join(u' ');
}

} // namespace

/// Runs on a private bus (dbus-run-session).
class TestSniStatusItemHost : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void registersWithAPanelAndAHostThatComeLater()
    {
        FakeAppearance appearance;
        SniStatusItemHost item(appearance);
        item.show(stateWith({}));
        FakePanel panel;
        panel.hasHost = false;
        QTRY_COMPARE(panel.items.size(), 1);
        QVERIFY(!item.isHosted());
        panel.letHostCome();
        QTRY_VERIFY(item.isHosted());
        QCOMPARE(panel.items.size(), 2);
    }

    void suitsThePanel_data()
    {
        QTest::addColumn<QByteArray>("process");
        QTest::addColumn<QString>("label");
        QTest::addColumn<bool>("hasIconName");
        QTest::addColumn<QString>("pixmaps");
        QTest::addColumn<QString>("toolTip");
        const auto squares = u"16 22 24 32 48"_s;
        const auto plain = u"R&D <b>sync</b>"_s;
        const auto markup = u"R&amp;D &lt;b&gt;sync&lt;/b&gt;"_s;
        QTest::newRow("labels are drawn")
            << QByteArray("gnome-shell") << u"in 4 min"_s << true << squares << plain;
        QTest::newRow("a tool tip is markup")
            << QByteArray("notification-area-applet") << u"in 4 min"_s << true << squares << markup;
        QTest::newRow("wide icons are drawn")
            << QByteArray("waybar") << u"in 4 min"_s << false << u"wide wide wide wide wide"_s << markup;
        QTest::newRow("no countdown to paint")
            << QByteArray("waybar") << QString() << true << squares << markup;
        QTest::newRow("wide icons are squeezed")
            << QByteArray("xfce4-panel") << u"in 4 min"_s << true << squares << plain;
    }
    void suitsThePanel()
    {
        QFETCH(const QByteArray, process);
        QFETCH(const QString, label);
        FakePanel panel(process);
        FakeAppearance appearance;
        SniStatusItemHost item(appearance);
        item.show(stateWith(label));
        QTRY_COMPARE(panel.items.size(), 1);

        const QVariantMap all = panel.properties();
        QCOMPARE(all[u"Status"_s].toString(), u"Active"_s);
        QCOMPARE(all.contains(u"XAyatanaLabel"_s), !label.isEmpty());
        QCOMPARE(all.value(u"XAyatanaLabel"_s).toString(), label);
        QTEST(sizesOf(all[u"IconPixmap"_s]), "pixmaps");
        const QString iconName = all[u"IconName"_s].toString();
        QTEST(!iconName.isEmpty(), "hasIconName");
        const QString file = all[u"IconThemePath"_s].toString() + u'/' + iconName + u".svg"_s;
        QCOMPARE(QFileInfo(file).isFile(), !iconName.isEmpty());
        QString name;
        QString title;
        const auto toolTip = all[u"ToolTip"_s].value<QDBusArgument>();
        toolTip.beginStructure();
        toolTip >> name;
        toolTip.beginArray();
        toolTip.endArray();
        toolTip >> title;
        toolTip.endStructure();
        QTEST(title, "toolTip");
    }

    void saysOnlyWhatChanged()
    {
        FakePanel panel("gnome-shell");
        FakeAppearance appearance;
        SniStatusItemHost item(appearance);
        StatusItemState state = stateWith(u"in 4 min"_s);
        item.show(state);
        QTRY_COMPARE(panel.items.size(), 1);
        (void)panel.properties();
        panel.signalled.clear();

        item.show(state);
        state.label = u"in 3 min"_s;
        item.show(state);
        state.menu[2].isEnabled = true;
        item.show(state);
        state.menu.removeLast();
        item.show(state);
        appearance.dark = true;
        Q_EMIT appearance.changed();
        Q_EMIT appearance.changed();
        QTRY_VERIFY(panel.signalled.contains(u"NewIcon"_s));
        (void)panel.properties();
        QCOMPARE(panel.signalled,
                 (QStringList { u"XAyatanaNewLabel"_s, u"ItemsPropertiesUpdated"_s, u"LayoutUpdated"_s,
                                u"NewIcon"_s }));
    }

    void comesAnewWhereALabelWouldStayForEver()
    {
        FakePanel panel("mate-panel");
        FakeAppearance appearance;
        SniStatusItemHost item(appearance);
        item.show(stateWith(u"in 4 min"_s));
        QTRY_COMPARE(panel.items.size(), 1);
        QTRY_VERIFY(item.isHosted());

        item.show(stateWith({}));

        QTRY_COMPARE(panel.items.size(), 2);
        QTRY_VERIFY(!QDBusConnection::sessionBus().interface()->isServiceRegistered(panel.items[0]));
        QVERIFY(!panel.properties().contains(u"XAyatanaLabel"_s));
    }

    void deliversClicksAndMenuEntries()
    {
        FakePanel panel;
        FakeAppearance appearance;
        SniStatusItemHost item(appearance);
        QSignalSpy activated(&item, &StatusItemHost::activated);
        QSignalSpy triggered(&item, &StatusItemHost::menuTriggered);
        item.show(stateWith({}));
        QTRY_COMPARE(panel.items.size(), 1);
        const auto menu = [&panel](const QString &method, const QVariantList &arguments) {
            return panel.call(u"/MenuBar"_s, menuInterface, method, arguments);
        };

        const QDBusMessage layout = menu(u"GetLayout"_s, { 0, -1, QStringList() });
        QCOMPARE(layout.signature(), u"u(ia{sv}av)"_s);
        const QDBusMessage label = menu(u"GetProperty"_s, { 3, u"label"_s });
        QCOMPARE(label.arguments().value(0).value<QDBusVariant>().variant().toString(), u"Join R__D"_s);
        const auto event = [&menu](int number, const QString &name) {
            (void)menu(u"Event"_s, { number, name, QVariant::fromValue(QDBusVariant(0)), 0U });
        };
        event(1, u"hovered"_s);
        event(2, u"clicked"_s); // the separator
        event(3, u"clicked"_s); // disabled
        StatusItemState shorter = stateWith({});
        shorter.menu.remove(1, 2);
        item.show(shorter);
        event(4, u"clicked"_s); // a menu still open from before: "quit" then and now
        QTRY_COMPARE(triggered.size(), 1);
        QCOMPARE(triggered[0][0].toString(), u"quit"_s);

        for (const QString &method : { u"Activate"_s, u"SecondaryActivate"_s, u"ContextMenu"_s })
            (void)panel.call(u"/StatusNotifierItem"_s, itemInterface, method, { 7, 9 });
        QTRY_COMPARE(activated.size(), 3);
        QCOMPARE(activated[2][0].toPoint(), QPoint(7, 9));
        // arguments of another kind are refused instead of read
        const QDBusMessage wrong = menu(u"Event"_s, { u"one"_s });
        QCOMPARE(wrong.type(), QDBusMessage::ErrorMessage);
    }

    void saysOnceWhatHelpsWhereThereIsNoTray_data()
    {
        QTest::addColumn<QByteArray>("desktop");
        QTest::addColumn<QString>("message");
        QTest::newRow("GNOME") << QByteArray("ubuntu:GNOME") << u"tray.unavailable.gnome"_s;
        QTest::newRow("sway") << QByteArray("sway") << u"tray.unavailable.other"_s;
    }
    void saysOnceWhatHelpsWhereThereIsNoTray()
    {
        QFETCH(const QByteArray, desktop);
        qputenv("XDG_CURRENT_DESKTOP", desktop);
        qunsetenv("DISPLAY");
        FakeAppearance appearance;
        DesktopStatusItemHost host(appearance, { .untilXEmbed = {}, .untilMessage = {} });
        QSignalSpy unavailable(&host, &StatusItemHost::unavailable);

        host.show(stateWith({}));
        QTRY_COMPARE(unavailable.size(), 1);
        QTEST(unavailable[0][0].toString(), "message");

        // a panel that comes and goes is no reason to say it again
        std::make_unique<FakePanel>().reset();
        host.show(stateWith(u"in 4 min"_s));
        QTest::qWait(1);
        QCOMPARE(unavailable.size(), 1);
    }
};

QTEST_MAIN(TestSniStatusItemHost)
#include "TestSniStatusItemHost.moc"
