#pragma once
#include <QString>
#include <chrono>
#include <expected>

namespace kestrel {

/// Copies the folder `source`, which must hold bin/kestrel, to `destination` and puts it in the place of what
/// stands there: whole or not at all. Everything in it must belong to this user or to root; symbolic links
/// are copied as links and must stay inside. Blocks, `patience` at most. The error is a text for people.
[[nodiscard]] std::expected<void, QString> installBundle(const QString &source, const QString &destination,
                                                         std::chrono::milliseconds patience);

} // namespace kestrel
