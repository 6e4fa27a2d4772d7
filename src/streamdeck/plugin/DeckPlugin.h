#pragma once
#include "streamdeck/plugin/BridgeClient.h"
#include "streamdeck/plugin/DeckActions.h"
#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <QWebSocket>

namespace kestrel {

/// What the Stream Deck program passes to a plug-in's process.
struct DeckRegistration
{
    quint16 port = 0;
    QString pluginUuid;
    QString registerEvent;
};

/// Stands between the Stream Deck program, which it tells what each visible key shows, and Kestrel's bridge,
/// to which it brings the presses. Speaks the public Stream Deck plug-in protocol; ends when that program
/// does.
class DeckPlugin final : public QObject
{
    Q_OBJECT
public:
    /// `images` is the folder with the key images.
    DeckPlugin(DeckRegistration registration, QString images, quint16 bridgePort);
    ~DeckPlugin() override;

Q_SIGNALS:
    void ended();

private:
    /// A key that is on the deck now.
    struct Key
    {
        const DeckAction *action;
        std::optional<KeyFace> shown;
    };

    void read(const QString &message);
    void press(const QString &context, const DeckAction &action);
    void showAll();
    void show(const QString &context, Key &key);
    void send(QLatin1StringView event, const QString &context, const QJsonObject &payload = {});
    [[nodiscard]] QString image(const DeckAction &action, KeyFace face) const;

    DeckRegistration m_registration;
    QString m_images;
    QWebSocket m_deck;
    BridgeClient m_bridge;
    QHash<QString, Key> m_keys; ///< by the deck's name for each
};

} // namespace kestrel
