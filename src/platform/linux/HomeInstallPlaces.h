#pragma once
#include "platform/InstallPlaces.h"

namespace kestrel {

/// Installation into the folders that this person may write without anybody's password; with `home` into that
/// folder instead of theirs.
[[nodiscard]] InstallPlaces homeInstallPlaces(const QString &home = {});

} // namespace kestrel
