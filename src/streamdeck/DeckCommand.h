#pragma once
#include "hotkeys/HotkeyAction.h"
#include <QString>
#include <optional>

namespace kestrel {

/// What a client of the bridge asks for.
struct DeckCommand
{
    QString name; ///< the message's "cmd"
    std::optional<HotkeyAction> action; ///< nothing: it is no action's

    [[nodiscard]] bool asksForState() const { return name == QLatin1StringView("state"); }
};

/// Nothing when the message is not a JSON object with a text "cmd"; other members do not matter.
[[nodiscard]] std::optional<DeckCommand> readDeckCommand(const QString &message);

} // namespace kestrel
