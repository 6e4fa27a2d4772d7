#include "streamdeck/DeckCommand.h"
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace kestrel {

std::optional<DeckCommand> readDeckCommand(const QString &message)
{
    const auto document = QJsonDocument::fromJson(message.toUtf8());
    const QJsonValue command = document.object().value("cmd"_L1);
    if (!command.isString())
        return {};
    const QString name = command.toString();
    return DeckCommand { name, hotkeyActionFromRaw(name) };
}

} // namespace kestrel
