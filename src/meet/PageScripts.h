#pragma once
#include <QString>
#include <QStringList>

namespace kestrel {

/// The page script that presses one button of a call. A keyword is part of a button's label, in any letter
/// case; they are tried in order, and hold neither quotes nor backslashes. Answers "ok:" and the label as it
/// was before the press, in lower case, or "miss".
[[nodiscard]] QString clickScript(const QStringList &keywords);

/// The page script that opens the tray of reactions, presses one of them once it is there (1.5 s are waited)
/// and closes the tray. What bears any of `exclusions` in its label or tooltip is never pressed. Answers
/// "fired" at once, or "no-trigger" where there is no tray.
[[nodiscard]] QString reactionScript(const QStringList &targets, const QStringList &exclusions);

} // namespace kestrel
