#include "platform/linux/PortalAppearance.h"
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QSignalSpy>
#include <QTest>

using namespace kestrel;
using namespace Qt::StringLiterals;

struct Colour
{
    double red = 0;
    double green = 0;
    double blue = 0;
};
Q_DECLARE_METATYPE(Colour)

QDBusArgument &operator<<(QDBusArgument &argument, const Colour &colour)
{
    argument.beginStructure();
    argument << colour.red << colour.green << colour.blue;
    argument.endStructure();
    return argument;
}
const QDBusArgument &operator>>(const QDBusArgument &argument, Colour & /*colour*/)
{
    return argument;
}

using Groups = QMap<QString, QVariantMap>;
Q_DECLARE_METATYPE(Groups)

namespace {

constexpr QLatin1StringView path { "/org/freedesktop/portal/desktop" };
constexpr QLatin1StringView interfaceName { "org.freedesktop.portal.Settings" };

} // namespace

/// A settings portal on a connection of its own.
class Portal final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")
public:
    explicit Portal(Groups groups)
        : m_groups(std::move(groups))
        , m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"portal"_s))
    {
        m_bus.registerObject(path, this, QDBusConnection::ExportAllSlots);
        m_bus.registerService(u"org.freedesktop.portal.Desktop"_s);
    }
    Portal(const Portal &) = delete;
    Portal &operator=(const Portal &) = delete;
    ~Portal() override
    {
        m_bus.unregisterService(u"org.freedesktop.portal.Desktop"_s);
        QDBusConnection::disconnectFromBus(u"portal"_s);
    }

    void change(const QString &group, const QString &key, const QVariant &value)
    {
        auto signal = QDBusMessage::createSignal(path, interfaceName, u"SettingChanged"_s);
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        m_bus.send(signal);
    }

    Q_SLOT Groups ReadAll(const QStringList & /*groups*/) { return m_groups; } // NOLINT: the bus's name

private:
    Groups m_groups;
    QDBusConnection m_bus;
};

class TestPortalAppearance final : public QObject
{
    Q_OBJECT

    const QString common = u"org.freedesktop.appearance"_s;
    const QString gnome = u"org.gnome.desktop.interface"_s;

private Q_SLOTS:
    void initTestCase()
    {
        qDBusRegisterMetaType<Groups>();
        qDBusRegisterMetaType<Colour>();
    }

    void startsLightAndLearnsFromAPortalThatComesLate()
    {
        PortalAppearance appearance;
        QSignalSpy changed(&appearance, &Appearance::changed);
        QVERIFY(!appearance.isDark() && !appearance.accentColor() && !appearance.reducesMotion()
                && !appearance.reducesTransparency());

        Portal portal({ { common,
                          { { u"color-scheme"_s, 1U },
                            { u"contrast"_s, 1U },
                            { u"accent-color"_s, QVariant::fromValue(Colour { 0.2, 0.4, 0.6 }) } } },
                        { gnome, { { u"enable-animations"_s, false } } } });
        QVERIFY(changed.wait());
        QVERIFY(appearance.isDark());
        QCOMPARE(appearance.accentColor().value_or(QColor()).name(), u"#336699"_s);
        QVERIFY(appearance.reducesTransparency());
        QVERIFY(appearance.reducesMotion());

        portal.change(common, u"color-scheme"_s, 2U);
        portal.change(gnome, u"cursor-size"_s, 24); // nothing of ours: not announced
        portal.change(common, u"accent-color"_s, QVariant::fromValue(Colour { -1, -1, -1 }));
        QTRY_VERIFY(!appearance.accentColor());
        QVERIFY(!appearance.isDark());
        QCOMPARE(changed.size(), 3);
    }

    void olderDesktopsAndThePersonsOwnWord()
    {
        const Portal portal({ { gnome, { { u"color-scheme"_s, u"prefer-dark"_s } } } });
        PortalAppearance desktops;
        QSignalSpy changed(&desktops, &Appearance::changed);
        QVERIFY(changed.wait());
        QVERIFY(desktops.isDark());

        qputenv("KESTREL_COLOR_SCHEME", "dark");
        const PortalAppearance own;
        qunsetenv("KESTREL_COLOR_SCHEME");
        QVERIFY2(own.isDark(), "before any portal answers");
    }
};

QTEST_GUILESS_MAIN(TestPortalAppearance)
#include "TestPortalAppearance.moc"
