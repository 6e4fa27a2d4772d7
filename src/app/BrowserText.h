#pragma once
#include "platform/linux/BrowserSetup.h"
#include <QJsonObject>
#include <QString>

namespace kestrel {

/// What `browser install` did, and what is left for the person to do.
[[nodiscard]] QString installationText(const QList<BrowserInstallation> &browsers, const QString &extension);

/// Each browser and profile, with what is still missing.
[[nodiscard]] QString reportText(const BrowserReport &report);

/// docs/command-line.md describes the keys.
[[nodiscard]] QJsonObject toJson(const BrowserReport &report);

} // namespace kestrel
