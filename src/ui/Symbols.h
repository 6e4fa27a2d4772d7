#pragma once
#include <QByteArray>
#include <QString>

namespace kestrel {

/// The drawing of one of our own symbols ("video.fill"): black on nothing, 24 by 24. Empty when unknown.
[[nodiscard]] QByteArray symbolSvg(const QString &name);
/// The application's icon, in colour.
[[nodiscard]] QByteArray applicationIconSvg();

} // namespace kestrel
