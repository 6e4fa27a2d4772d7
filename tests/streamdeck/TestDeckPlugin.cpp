#include "hotkeys/HotkeyAction.h"
#include "streamdeck/StreamDeckBridge.h"
#include "streamdeck/plugin/DeckActions.h"
#include "support/Files.h"
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QProcess>
#include <QSet>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <QWebSocket>
#include <QWebSocketServer>
#include <memory>

using namespace Qt::StringLiterals;
using namespace kestrel;

namespace {

const QDir folder(QStringLiteral(PLUGIN_FOLDER));

QJsonObject manifest()
{
    return QJsonDocument::fromJson(contentOf(folder.filePath(u"manifest.json"_s))).object();
}

/// What the deck is sent to show an image.
QString imageText(const QString &name)
{
    return u"data:image/png;base64,"_s
        + QString::fromLatin1(contentOf(folder.filePath(u"images/%1@2x.png"_s.arg(name))).toBase64());
}

/// The Stream Deck program, which starts the plug-in as the manifest says.
class PlayedDeck : public QObject
{
    Q_OBJECT
public:
    explicit PlayedDeck(quint16 bridgePort, const QString &path = QString())
        : m_server(u"deck"_s, QWebSocketServer::NonSecureMode)
    {
        connect(&m_server, &QWebSocketServer::newConnection, this, [this] {
            m_plugin.reset(m_server.nextPendingConnection());
            connect(m_plugin.get(), &QWebSocket::textMessageReceived, this, [this](const QString &text) {
                received.append(QJsonDocument::fromJson(text.toUtf8()).object());
            });
        });
        m_server.listen(QHostAddress::LocalHost);
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"KESTREL_BRIDGE_PORT"_s, QString::number(bridgePort));
        environment.insert(u"PATH"_s, path);
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.start(folder.filePath(manifest().value("CodePathLin"_L1).toString()),
                      { u"-port"_s, QString::number(m_server.serverPort()), u"-pluginUUID"_s, u"U"_s,
                        u"-registerEvent"_s, u"registerPlugin"_s, u"-info"_s, u"{\"devices\":[]}"_s });
    }

    ~PlayedDeck() override { close(); }

    void close()
    {
        m_plugin.reset();
        m_server.close();
        process.waitForFinished();
    }

    void tell(const QString &event, const QString &context, const QString &action)
    {
        const QJsonObject message { { u"event"_s, event },
                                    { u"context"_s, context },
                                    { u"action"_s, action },
                                    { u"device"_s, u"D"_s },
                                    { u"payload"_s, QJsonObject { { u"isInMultiAction"_s, false } } } };
        m_plugin->sendTextMessage(QString::fromUtf8(QJsonDocument(message).toJson()));
    }

    /// What the key shows now, by the messages so far: "<image> <state>".
    [[nodiscard]] QString shown(const QString &context, const QStringList &images) const
    {
        QString image;
        QString state;
        for (const QJsonObject &message : received) {
            const auto payload = message.value("payload"_L1).toObject();
            if (message.value("context"_L1) != context)
                continue;
            if (message.value("event"_L1) == "setState"_L1)
                state = QString::number(payload.value("state"_L1).toInt());
            if (message.value("event"_L1) == "setImage"_L1)
                image = payload.value("image"_L1).toString();
        }
        for (const QString &name : images) {
            if (imageText(name) == image)
                return u"%1 %2"_s.arg(name, state).trimmed();
        }
        return image.left(60);
    }

    [[nodiscard]] qsizetype alerts() const
    {
        return std::ranges::count_if(
            received, [](const QJsonObject &message) { return message.value("event"_L1) == "showAlert"_L1; });
    }

    QList<QJsonObject> received;
    QProcess process;

private:
    QWebSocketServer m_server;
    std::unique_ptr<QWebSocket> m_plugin;
};

quint16 freePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

const QStringList muteFaces { u"mute-on"_s, u"mute-off"_s, u"mute-absent"_s };
const QStringList heartFaces { u"heart-on"_s, u"heart-absent"_s };
const QString mute = u"app.kestrel.kestrel.mute"_s;
const QString heart = u"app.kestrel.kestrel.react.heart"_s;

} // namespace

class TestDeckPlugin : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QLoggingCategory::setFilterRules(u"bridge=false"_s); }

    void theManifestIsComplete()
    {
        const QJsonObject object = manifest();
        QCOMPARE(object.value("SDKVersion"_L1).toInt(), 2);
        QCOMPARE(object.value("Version"_L1), QStringLiteral(KESTREL_VERSION));
        QCOMPARE(object.value("OS"_L1)[0].toObject().value("Platform"_L1), u"linux"_s);
        QVERIFY(QFileInfo(folder.filePath(object.value("CodePathLin"_L1).toString())).isExecutable());

        QSet<QString> images { object.value("Icon"_L1).toString(),
                               object.value("CategoryIcon"_L1).toString() };
        QSet<QString> commands;
        const QJsonArray actions = object.value("Actions"_L1).toArray();
        QCOMPARE(actions.size(), qsizetype(deckActions().size()));
        for (const auto &entry : actions) {
            const QJsonObject offered = entry.toObject();
            const auto *action = deckAction(offered.value("UUID"_L1).toString());
            QVERIFY2(action, qPrintable(offered.value("UUID"_L1).toString()));
            QVERIFY(!offered.value("Name"_L1).toString().isEmpty());
            QVERIFY(!offered.value("Tooltip"_L1).toString().isEmpty());
            commands.insert(action->command);
            images.insert(offered.value("Icon"_L1).toString());
            const QJsonArray states = offered.value("States"_L1).toArray();
            QCOMPARE(states.size(), action->isSwitch() ? 2 : 1);
            for (const auto &state : states)
                images.insert(state.toObject().value("Image"_L1).toString());
            if (!action->command.isEmpty())
                images.insert(u"images/%1-absent"_s.arg(action->image));
        }
        for (const QString &image : std::as_const(images)) {
            const QImage once(folder.filePath(image + u".png"_s));
            const QImage twice(folder.filePath(image + u"@2x.png"_s));
            QVERIFY2(!once.isNull() && twice.size() == once.size() * 2, qPrintable(image));
        }
        for (const auto &row : hotkeyActions()) {
            const bool isOnKey = row.action != HotkeyAction::join && row.action != HotkeyAction::meetFocus;
            QVERIFY2(commands.contains(row.rawValue) == isOnKey, row.rawValue.data());
        }
    }

    void keysFollowTheCallAndComeBack()
    {
        const quint16 port = freePort();
        PlayedDeck deck(port);
        QTRY_COMPARE(deck.received.size(), 1);
        QCOMPARE(deck.received[0],
                 QJsonObject({ { u"event"_s, u"registerPlugin"_s }, { u"uuid"_s, u"U"_s } }));
        deck.tell(u"willAppear"_s, u"m"_s, mute);
        deck.tell(u"willAppear"_s, u"h"_s, heart);
        QTRY_COMPARE(deck.shown(u"h"_s, heartFaces), u"heart-absent"_s);
        QCOMPARE(deck.shown(u"m"_s, muteFaces), u"mute-absent 1"_s);

        auto bridge = std::make_unique<StreamDeckBridge>();
        MeetStateSnapshot current { .inMeeting = true };
        bridge->stateProvider = [&] { return current; };
        bridge->start(port);
        QTRY_COMPARE_WITH_TIMEOUT(deck.shown(u"m"_s, muteFaces), u"mute-on 0"_s, 20'000);
        QTRY_COMPARE(deck.shown(u"h"_s, heartFaces), u"heart-on"_s);
        current.micOn = false;
        bridge->broadcast(current);
        QTRY_COMPARE(deck.shown(u"m"_s, muteFaces), u"mute-off 1"_s);
        const auto before = deck.received.size();
        current.sharing = true;
        bridge->broadcast(current);
        deck.tell(u"willDisappear"_s, u"h"_s, heart);
        deck.tell(u"willAppear"_s, u"again"_s, mute);
        QTRY_COMPARE(deck.shown(u"again"_s, muteFaces), u"mute-off 1"_s);
        QCOMPARE(deck.received.size(), before + 2); // nothing for keys that did not change

        bridge.reset();
        QTRY_COMPARE(deck.shown(u"m"_s, muteFaces), u"mute-absent 1"_s);
        QCOMPARE(deck.shown(u"h"_s, heartFaces), u"heart-on"_s); // gone from the deck
        bridge = std::make_unique<StreamDeckBridge>();
        bridge->stateProvider = [&] { return current; };
        bridge->start(port);
        QTRY_COMPARE_WITH_TIMEOUT(deck.shown(u"m"_s, muteFaces), u"mute-off 1"_s, 20'000);

        deck.close();
        QCOMPARE(deck.process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(deck.process.exitCode(), 0);
    }

    void pressesReachKestrel()
    {
        const quint16 port = freePort();
        StreamDeckBridge bridge;
        MeetStateSnapshot current { .inMeeting = true };
        QList<HotkeyAction> actions;
        bridge.stateProvider = [&] { return current; };
        bridge.onCommand = [&](HotkeyAction action) { actions.append(action); };
        bridge.start(port);
        PlayedDeck deck(port);
        QTRY_COMPARE(deck.received.size(), 1);
        deck.tell(u"willAppear"_s, u"m"_s, mute);
        QTRY_COMPARE(deck.shown(u"m"_s, muteFaces), u"mute-on 0"_s);
        for (const auto &action : deckActions()) {
            if (!action.command.isEmpty())
                deck.tell(u"keyDown"_s, u"c"_s, action.uuid);
        }
        QTRY_COMPARE(actions.size(), 15);
        QCOMPARE(actions.first(), HotkeyAction::meetMute);
        QCOMPARE(actions.last(), HotkeyAction::meetReactLove);
        QCOMPARE(deck.alerts(), 0);

        current.inMeeting = false;
        bridge.broadcast(current);
        QTRY_COMPARE(deck.shown(u"m"_s, muteFaces), u"mute-absent 1"_s);
        deck.tell(u"keyDown"_s, u"m"_s, mute);
        QTRY_COMPARE(deck.alerts(), 1);
        QTRY_COMPARE(actions.size(), 16);
        bridge.stop();
        deck.tell(u"keyDown"_s, u"m"_s, mute);
        QTRY_COMPARE(deck.alerts(), 2);
        QCOMPARE(actions.size(), 16);
    }

    void theNextMeetingIsJoinedByKestrelItself()
    {
        const QTemporaryDir path;
        const QString joined = path.filePath(u"joined"_s);
        PlayedDeck deck(freePort(), path.path());
        QTRY_COMPARE(deck.received.size(), 1);
        const QString next = u"app.kestrel.kestrel.next"_s;
        deck.tell(u"willAppear"_s, u"n"_s, next);
        QTRY_COMPARE(deck.shown(u"n"_s, { u"next-on"_s }), u"next-on"_s);
        deck.tell(u"keyDown"_s, u"n"_s, next);
        QTRY_COMPARE(deck.alerts(), 1); // not installed
        writeProgram(path.filePath(u"kestrel"_s), "#!/bin/sh\necho \"$*\" > \"" + joined.toUtf8() + "\"\n");
        deck.tell(u"keyDown"_s, u"n"_s, next);
        QTRY_COMPARE(QFileInfo(joined).size(), 5);
        QCOMPARE(contentOf(joined), "join\n");
        QCOMPARE(deck.alerts(), 1);
    }
};

QTEST_GUILESS_MAIN(TestDeckPlugin)
#include "TestDeckPlugin.moc"
