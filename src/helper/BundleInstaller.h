#pragma once
#include "platform/InstallPlaces.h"
#include <QString>
#include <chrono>
#include <expected>

namespace kestrel {

/// Copies the folder `source`, which must hold a whole Kestrel, to `places.destination`, puts it in the place
/// of what stands there and tells the desktop of it: all or nothing. Everything in it must belong to this
/// user or to root; symbolic links are copied as links and must stay inside. Blocks, `patience` at most for
/// the copy. The error is a text for people.
[[nodiscard]] std::expected<void, QString> installBundle(const QString &source, const InstallPlaces &places,
                                                         std::chrono::milliseconds patience);

} // namespace kestrel
