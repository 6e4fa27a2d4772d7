#include "platform/linux/DBusNotifications.h"
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace kestrel;
using namespace Qt::StringLiterals;

namespace {

const auto serviceName = u"org.freedesktop.Notifications"_s;
const auto servicePath = u"/org/freedesktop/Notifications"_s;

/// The desktop's notification service, on a connection of its own.
class FakeService final : public QDBusVirtualObject
{
    Q_OBJECT
public:
    FakeService()
    {
        bus.registerVirtualObject(servicePath, this);
        bus.registerService(serviceName);
    }
    ~FakeService() override { QDBusConnection::disconnectFromBus(bus.name()); }

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        if (message.member() == "Notify"_L1) {
            const uint replaced = message.arguments()[1].toUInt();
            const uint number = replaced == 0 ? ++last : replaced;
            notified << message;
            connection.send(message.createReply(number));
        } else if (message.member() == "GetServerInformation"_L1) {
            connection.send(
                message.createReply(QVariantList { u"mako"_s, u"emersion"_s, u"1.7"_s, u"1.2"_s }));
        } else if (message.member() == "GetCapabilities"_L1) {
            connection.send(message.createReply(QVariant(QStringList { u"body"_s, u"actions"_s })));
        } else {
            closed << message.arguments().first().toUInt();
            connection.send(message.createReply());
        }
        return true;
    }
    void say(const QString &signal, const QVariantList &arguments) const
    {
        QDBusMessage message = QDBusMessage::createSignal(servicePath, serviceName, signal);
        message.setArguments(arguments);
        bus.send(message);
    }

    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"service"_s);
    QList<QDBusMessage> notified;
    QList<uint> closed;
    uint last = 40;
};

Notifications::Notice noticeOf(const QString &key, const QString &text = {})
{
    return { key, u"R&D <b>sync</b>"_s, text, { { u"join"_s, u"Join"_s } }, true };
}

} // namespace

/// Runs on a private bus (dbus-run-session).
class TestDBusNotifications : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void tellsWhoShowsThem()
    {
        DBusNotifications notifications(QDBusConnection::sessionBus());
        QVERIFY(!QCoro::waitFor(notifications.service()));
        const FakeService service;
        const auto found = QCoro::waitFor(notifications.service());
        QVERIFY(found);
        QCOMPARE(*found, (NotificationService { u"mako"_s, u"1.7"_s, { u"body"_s, u"actions"_s } }));
    }

    void showsReplacesAndAnswersByKey()
    {
        FakeService service;
        DBusNotifications notifications(QDBusConnection::sessionBus());
        QSignalSpy chosen(&notifications, &Notifications::actionChosen);
        QSignalSpy closed(&notifications, &Notifications::closed);

        notifications.show(noticeOf(u"a"_s, u"in <i>5</i> min & more"_s));
        notifications.show(noticeOf(u"a"_s, u"now"_s)); // before the first one's answer
        notifications.show(noticeOf(u"b"_s));
        QTRY_COMPARE(service.notified.size(), 3);

        QVariantList first = service.notified[0].arguments();
        QCOMPARE(first[3].toString(), u"R&D <b>sync</b>"_s);
        QCOMPARE(first[4].toString(), u"in &lt;i&gt;5&lt;/i&gt; min &amp; more"_s);
        QCOMPARE(first[5].toStringList(), (QStringList { u"join"_s, u"Join"_s }));
        const auto hints = qdbus_cast<QVariantMap>(first[6]);
        QCOMPARE(hints[u"urgency"_s].typeId(), QMetaType::UChar);
        QCOMPARE(hints[u"urgency"_s].toInt(), 2);
        QCOMPARE(hints[u"desktop-entry"_s].toString(), u"app.kestrel.Kestrel"_s);
        QList<uint> replaced;
        for (const QDBusMessage &message : std::as_const(service.notified))
            replaced << message.arguments()[1].toUInt();
        QCOMPARE(replaced, (QList<uint> { 0, 0, 41 })); // a, b, a again

        service.say(u"ActionInvoked"_s, { 41U, u"join"_s });
        service.say(u"ActionInvoked"_s, { 99U, u"join"_s }); // another program's
        service.say(u"NotificationClosed"_s, { 42U, 2U });
        QTRY_COMPARE(closed.size(), 1);
        QCOMPARE(chosen.size(), 1);
        QCOMPARE(chosen[0][0].toString(), u"a"_s);
        QCOMPARE(chosen[0][1].toString(), u"join"_s);
        QCOMPARE(closed[0][0].toString(), u"b"_s);
    }

    void closesWhatWasNotEvenShownYet()
    {
        FakeService service;
        DBusNotifications notifications(QDBusConnection::sessionBus());

        notifications.show(noticeOf(u"a"_s));
        notifications.close(u"a"_s);
        notifications.close(u"unknown"_s);

        QTRY_COMPARE(service.closed, QList<uint> { 41 });
    }

    void saysOnceThatThereIsNoService()
    {
        DBusNotifications notifications(QDBusConnection::sessionBus());
        QTest::failOnWarning(QRegularExpression(u"."_s));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"no notification could be shown"_s));

        const QSignalSpy closed(&notifications, &Notifications::closed);

        notifications.show(noticeOf(u"a"_s));
        notifications.show(noticeOf(u"b"_s));
        QTRY_COMPARE(closed.count(), 2); // or whoever waits for an answer waits for ever

        FakeService late;
        notifications.show(noticeOf(u"a"_s));
        QTRY_COMPARE(late.notified.size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestDBusNotifications)
#include "TestDBusNotifications.moc"
