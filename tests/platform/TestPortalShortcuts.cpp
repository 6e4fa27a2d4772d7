#include "platform/Modifier.h"
#include "platform/linux/PortalShortcuts.h"
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <memory>

using namespace kestrel;
using namespace Qt::StringLiterals;

using Outcomes = QList<ShortcutBackend::Outcome>;

namespace {

const auto serviceName = u"org.freedesktop.portal.Desktop"_s;
const auto servicePath = u"/org/freedesktop/portal/desktop"_s;
const auto shortcutsInterface = u"org.freedesktop.portal.GlobalShortcuts"_s;

struct Taken
{
    QString name;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Taken &shortcut)
{
    argument.beginStructure();
    argument << shortcut.name << shortcut.properties;
    argument.endStructure();
    return argument;
}
const QDBusArgument &operator>>(const QDBusArgument &argument, Taken &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.name >> shortcut.properties;
    argument.endStructure();
    return argument;
}

ShortcutBackend::Shortcut shortcut(quint32 id, const QString &name, quint32 keyCode, quint32 modifiers)
{
    return { id, name, u"What it does"_s, keyCode, modifiers };
}

const QList<ShortcutBackend::Shortcut> three {
    shortcut(2, u"meetMute"_s, 46, Modifier::Option | Modifier::Shift),
    shortcut(7, u"meetReactHeart"_s, 19,
             Modifier::Control | Modifier::Option | Modifier::Shift | Modifier::Command | 0x80000000U),
    shortcut(1, u"join"_s, 80, Modifier::Command), // a key without a name on the US layout
};

Outcomes outcomes(bool mute, bool heart, bool join)
{
    return { { 2, mute }, { 7, heart }, { 1, join } };
}

} // namespace

Q_DECLARE_METATYPE(Taken)
Q_DECLARE_METATYPE(QList<Taken>)

namespace {

/// The desktop's portal, on a connection of its own.
class FakePortal final : public QDBusVirtualObject
{
    Q_OBJECT
public:
    FakePortal()
    {
        bus.registerVirtualObject(servicePath, this, QDBusConnection::SubPath);
        bus.registerService(serviceName);
    }
    ~FakePortal() override
    {
        bus.unregisterService(serviceName);
        QDBusConnection::disconnectFromBus(bus.name());
    }

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        calls << message.member();
        if (message.member() == "Close"_L1) {
            closed << message.path();
            return true;
        }
        if (message.interface() != shortcutsInterface)
            return false;
        const auto options = qdbus_cast<QVariantMap>(message.arguments().last());
        QString sender = message.service().mid(1);
        sender.replace(u'.', u'_');
        request = servicePath + u"/request/"_s + sender + u'/' + options[u"handle_token"_s].toString();
        QVariantMap results;
        if (message.member() == "CreateSession"_L1) {
            session =
                servicePath + u"/session/"_s + sender + u'/' + options[u"session_handle_token"_s].toString();
            results.insert(u"session_handle"_s, session);
        } else {
            bound << message;
            QList<Taken> taken;
            for (const Taken &wanted : qdbus_cast<QList<Taken>>(message.arguments()[1])) {
                if (!refused.contains(wanted.name))
                    taken << wanted;
            }
            results.insert(u"shortcuts"_s, QVariant::fromValue(taken));
            if (isHeld) {
                connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
                return true;
            }
        }
        const uint response = message.member() == "BindShortcuts"_L1 ? bindResponse : 0;
        // the answer may come before the reply
        if (answersFirst)
            say(request, u"org.freedesktop.portal.Request"_s, u"Response"_s, { response, results });
        connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
        if (!answersFirst)
            say(request, u"org.freedesktop.portal.Request"_s, u"Response"_s, { response, results });
        return true;
    }

    void say(const QString &path, const QString &interfaceName, const QString &signal,
             const QVariantList &arguments) const
    {
        auto message = QDBusMessage::createSignal(path, interfaceName, signal);
        message.setArguments(arguments);
        bus.send(message);
    }
    void activate(const QString &name, const QString &ofSession = {}) const
    {
        say(servicePath, shortcutsInterface, u"Activated"_s,
            { QVariant::fromValue(QDBusObjectPath(ofSession.isEmpty() ? session : ofSession)), name,
              QVariant::fromValue<qulonglong>(12), QVariantMap() });
    }
    void changeTo(const QList<Taken> &taken) const
    {
        say(servicePath, shortcutsInterface, u"ShortcutsChanged"_s,
            { QVariant::fromValue(QDBusObjectPath(session)), QVariant::fromValue(taken) });
    }

    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"portal"_s);
    QStringList calls;
    QStringList closed;
    QList<QDBusMessage> bound;
    QSet<QString> refused;
    QString session;
    QString request;
    uint bindResponse = 0; ///< 1: the person said no
    bool answersFirst = false;
    bool isHeld = false; ///< the person looks at the dialog
};

/// What was sent to and fro by now has been handled.
void settle()
{
    for (int i = 0; i < 3; ++i) {
        (void)QDBusConnection::sessionBus().interface()->isServiceRegistered(serviceName);
        QCoreApplication::processEvents();
    }
}

} // namespace

/// Runs on a private bus (dbus-run-session).
class TestPortalShortcuts final : public QObject
{
    Q_OBJECT

    static Outcomes last(const QSignalSpy &answered) { return answered.last().first().value<Outcomes>(); }

private Q_SLOTS:
    void initTestCase()
    {
        qDBusRegisterMetaType<Taken>();
        qDBusRegisterMetaType<QList<Taken>>();
    }
    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void bindsOnceAndHearsItsPresses()
    {
        FakePortal portal;
        portal.refused = { u"join"_s };
        PortalShortcuts shortcuts(QDBusConnection::sessionBus());
        QSignalSpy answered(&shortcuts, &ShortcutBackend::answered);
        QSignalSpy pressed(&shortcuts, &ShortcutBackend::pressed);
        shortcuts.bind(three);
        QTRY_COMPARE(answered.size(), 1);
        QCOMPARE(last(answered), outcomes(true, true, false));
        QCOMPARE(portal.calls, (QStringList { u"CreateSession"_s, u"BindShortcuts"_s }));
        const QVariantList arguments = portal.bound.first().arguments();
        QCOMPARE(portal.bound.first().signature(), u"oa(sa{sv})sa{sv}"_s);
        QCOMPARE(arguments[0].value<QDBusObjectPath>().path(), portal.session);
        QStringList asked;
        for (const Taken &wanted : qdbus_cast<QList<Taken>>(arguments[1]))
            asked << wanted.name + u' ' + wanted.properties[u"description"_s].toString() + u' '
                    + wanted.properties.value(u"preferred_trigger"_s, u"-"_s).toString();
        QCOMPARE(asked,
                 (QStringList { u"meetMute What it does ALT+SHIFT+m"_s,
                                u"meetReactHeart What it does CTRL+ALT+SHIFT+LOGO+2"_s,
                                u"join What it does -"_s }));

        portal.activate(u"meetMute"_s);
        portal.activate(u"meetMute"_s, u"/org/freedesktop/portal/desktop/session/1_0/other"_s);
        portal.activate(u"unknown"_s);
        portal.activate(u"meetReactHeart"_s);
        QTRY_COMPARE(pressed.size(), 2);
        QCOMPARE(pressed[0][0].toUInt(), 2U);
        QCOMPARE(pressed[1][0].toUInt(), 7U);
        shortcuts.setSuspended(true);
        portal.activate(u"meetMute"_s);
        settle();
        shortcuts.setSuspended(false);
        portal.activate(u"meetReactHeart"_s);
        QTRY_COMPARE(pressed.size(), 3);
        QCOMPARE(pressed[2][0].toUInt(), 7U);

        shortcuts.bind(three);
        QCOMPARE(answered.size(), 2); // known already
        portal.changeTo({ { u"join"_s, {} }, { u"meetMute"_s, {} } }); // in the desktop's settings
        QTRY_COMPARE(answered.size(), 3);
        QCOMPARE(last(answered), outcomes(true, false, true));
        QCOMPARE(portal.calls.size(), 2);
    }

    void anotherSetIsAnotherSession()
    {
        FakePortal portal;
        PortalShortcuts shortcuts(QDBusConnection::sessionBus());
        QSignalSpy answered(&shortcuts, &ShortcutBackend::answered);
        shortcuts.bind(three);
        QTRY_COMPARE(answered.size(), 1);
        const QString before = portal.session;
        shortcuts.bind(three.first(1));
        QTRY_COMPARE(answered.size(), 2);
        QCOMPARE(last(answered), (Outcomes { { 2, true } }));
        QCOMPARE(portal.closed, QStringList { before });
        QVERIFY(portal.session != before);

        shortcuts.bind({});
        QCOMPARE(answered.size(), 3);
        QTRY_COMPARE(portal.closed.size(), 2);
        QCOMPARE(portal.bound.size(), 2);
    }

    void aNewerSetTakesTheDialogOfTheOlderAway()
    {
        FakePortal portal;
        portal.isHeld = true;
        PortalShortcuts shortcuts(QDBusConnection::sessionBus());
        QSignalSpy answered(&shortcuts, &ShortcutBackend::answered);
        shortcuts.bind(three);
        QTRY_COMPARE(portal.bound.size(), 1);
        shortcuts.bind(three); // the person still looks at it
        settle();
        QCOMPARE(portal.bound.size(), 1);
        const QStringList open { portal.request, portal.session };
        portal.isHeld = false;
        shortcuts.bind(three.first(2));
        QTRY_COMPARE(answered.size(), 1);
        QCOMPARE(last(answered), (Outcomes { { 2, true }, { 7, true } }));
        QCOMPARE(portal.closed, open);
    }

    void whoeverSaysNoIsNotAskedAgain()
    {
        FakePortal portal;
        portal.bindResponse = 1;
        PortalShortcuts shortcuts(QDBusConnection::sessionBus());
        QSignalSpy answered(&shortcuts, &ShortcutBackend::answered);
        QTest::ignoreMessage(QtWarningMsg, "No global shortcuts from the desktop portal: the person said no");
        shortcuts.bind(three);
        QTRY_COMPARE(answered.size(), 1);
        shortcuts.bind(three);
        QCOMPARE(answered.size(), 2);
        QCOMPARE(last(answered), outcomes(false, false, false));
        settle();
        QCOMPARE(portal.bound.size(), 1);
    }

    void withoutAPortalUntilOneComesAndGoesAndComes()
    {
        PortalShortcuts shortcuts(QDBusConnection::sessionBus());
        QSignalSpy answered(&shortcuts, &ShortcutBackend::answered);
        QSignalSpy pressed(&shortcuts, &ShortcutBackend::pressed);
        QTest::ignoreMessage(
            QtWarningMsg,
            QRegularExpression(u"^No global shortcuts from the desktop portal: .*org.freedesktop.portal"_s));
        shortcuts.bind(three);
        QTRY_COMPARE(answered.size(), 1);
        QCOMPARE(last(answered), outcomes(false, false, false));
        shortcuts.bind(three.first(2)); // not complained of twice
        QTRY_COMPARE(answered.size(), 2);

        auto portal = std::make_unique<FakePortal>();
        portal->answersFirst = true;
        QTRY_COMPARE(answered.size(), 3);
        QCOMPARE(last(answered), (Outcomes { { 2, true }, { 7, true } }));
        portal.reset();
        portal = std::make_unique<FakePortal>();
        QTRY_COMPARE(answered.size(), 4);
        portal->activate(u"meetMute"_s);
        QTRY_COMPARE(pressed.size(), 1);
        QCOMPARE(portal->bound.size(), 1);

        portal->isHeld = true;
        shortcuts.bind(three);
        QTRY_COMPARE(portal->bound.size(), 2);
        QTest::ignoreMessage(QtWarningMsg, "No global shortcuts from the desktop portal: it ended");
        portal.reset(); // with the dialog open
        QTRY_COMPARE(answered.size(), 5);
        QCOMPARE(last(answered), outcomes(false, false, false));
    }

    void aSessionThatTheDesktopClosesMayBeBoundAgain()
    {
        FakePortal portal;
        PortalShortcuts shortcuts(QDBusConnection::sessionBus());
        QSignalSpy answered(&shortcuts, &ShortcutBackend::answered);
        shortcuts.bind(three);
        QTRY_COMPARE(answered.size(), 1);
        portal.say(portal.session, u"org.freedesktop.portal.Session"_s, u"Closed"_s, {});
        QTRY_COMPARE(answered.size(), 2);
        QCOMPARE(last(answered), outcomes(false, false, false));
        shortcuts.bind(three);
        QTRY_COMPARE(answered.size(), 3);
        QCOMPARE(last(answered), outcomes(true, true, true));
    }
};

QTEST_GUILESS_MAIN(TestPortalShortcuts)
#include "TestPortalShortcuts.moc"
