#pragma once
#include <QString>

namespace kestrel {

/// The text without what cannot be seen: Unicode's default-ignorable code points (soft hyphens, joiners,
/// marks of direction, variation selectors …) and the control characters below the space, the tab excepted.
[[nodiscard]] QString stripInvisibles(const QString &text);

/// The first `limit` user-perceived characters (grapheme clusters); `limit` is at least 1.
[[nodiscard]] QString firstCharacters(const QString &text, qsizetype limit);

} // namespace kestrel
