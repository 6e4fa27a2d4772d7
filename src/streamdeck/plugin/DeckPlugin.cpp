#include "streamdeck/plugin/DeckPlugin.h"
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QNetworkProxy>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

QString findKestrel()
{
    const QString inPath = QStandardPaths::findExecutable(u"kestrel"_s);
    // a desktop session's PATH often lacks it
    return inPath.isEmpty()
        ? QStandardPaths::findExecutable(u"kestrel"_s, { QDir::homePath() + u"/.local/bin"_s })
        : inPath;
}

QLatin1StringView nameOf(KeyFace face)
{
    switch (face) {
    case KeyFace::On:
        return "on"_L1;
    case KeyFace::Off:
        return "off"_L1;
    case KeyFace::Absent:
        return "absent"_L1;
    }
    return {};
}

} // namespace

DeckPlugin::DeckPlugin(DeckRegistration registration, QString images, quint16 bridgePort)
    : m_registration(std::move(registration))
    , m_images(std::move(images))
    , m_bridge(bridgePort)
{
    m_deck.setProxy(QNetworkProxy::NoProxy);
    connect(&m_deck, &QWebSocket::connected, this, [this] {
        const QJsonObject hello { { u"event"_s, m_registration.registerEvent },
                                  { u"uuid"_s, m_registration.pluginUuid } };
        m_deck.sendTextMessage(QString::fromUtf8(QJsonDocument(hello).toJson(QJsonDocument::Compact)));
    });
    connect(&m_deck, &QWebSocket::textMessageReceived, this, &DeckPlugin::read);
    // a deck that cannot be reached, and one that goes
    connect(&m_deck, &QWebSocket::stateChanged, this, [this](QAbstractSocket::SocketState state) {
        if (state == QAbstractSocket::UnconnectedState)
            Q_EMIT ended();
    });
    connect(&m_bridge, &BridgeClient::changed, this, &DeckPlugin::showAll);
    m_deck.open(QUrl(u"ws://127.0.0.1:%1"_s.arg(m_registration.port)));
}

DeckPlugin::~DeckPlugin()
{
    m_deck.disconnect(this);
    m_bridge.disconnect(this);
}

void DeckPlugin::read(const QString &message)
{
    const QJsonObject object = QJsonDocument::fromJson(message.toUtf8()).object();
    const QString event = object.value("event"_L1).toString();
    const QString context = object.value("context"_L1).toString();
    const DeckAction *action = deckAction(object.value("action"_L1).toString());
    if (!action || context.isEmpty())
        return;
    if (event == "willAppear"_L1)
        show(context, *m_keys.insert(context, { action, {} }));
    else if (event == "willDisappear"_L1)
        m_keys.remove(context);
    else if (event == "keyDown"_L1)
        press(context, *action);
}

void DeckPlugin::press(const QString &context, const DeckAction &action)
{
    bool isDone = false;
    if (action.command.isEmpty()) {
        const QString kestrel = findKestrel();
        isDone = !kestrel.isEmpty() && QProcess::startDetached(kestrel, { u"join"_s });
    } else {
        // sent without a call too: Kestrel may not have seen a call that just began
        isDone = m_bridge.send(action.command) && action.face(m_bridge.snapshot()) != KeyFace::Absent;
    }
    if (!isDone)
        send("showAlert"_L1, context);
}

void DeckPlugin::showAll()
{
    for (auto key = m_keys.begin(); key != m_keys.end(); ++key)
        show(key.key(), *key);
}

void DeckPlugin::show(const QString &context, Key &key)
{
    const KeyFace face = key.action->face(m_bridge.snapshot());
    if (key.shown == face)
        return;
    key.shown = face;
    // the deck knows two states; the image says the third
    if (key.action->isSwitch())
        send("setState"_L1, context, { { u"state"_s, face == KeyFace::On ? 0 : 1 } });
    send("setImage"_L1, context, { { u"image"_s, image(*key.action, face) }, { u"target"_s, 0 } });
}

void DeckPlugin::send(QLatin1StringView event, const QString &context, const QJsonObject &payload)
{
    QJsonObject message { { u"event"_s, event }, { u"context"_s, context } };
    if (!payload.isEmpty())
        message.insert(u"payload"_s, payload);
    m_deck.sendTextMessage(QString::fromUtf8(QJsonDocument(message).toJson(QJsonDocument::Compact)));
}

QString DeckPlugin::image(const DeckAction &action, KeyFace face) const
{
    QFile file(u"%1/%2-%3@2x.png"_s.arg(m_images, action.image, nameOf(face)));
    if (!file.open(QIODevice::ReadOnly))
        qWarning().noquote() << "no image" << file.fileName();
    return u"data:image/png;base64,"_s + QString::fromLatin1(file.readAll().toBase64());
}

} // namespace kestrel
