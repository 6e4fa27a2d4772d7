#pragma once
#include "model/Meeting.h"
#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>

namespace kestrel {

/// A meeting with all its fields under their names: instants in UTC with milliseconds, absent values as null,
/// addresses fully encoded.
[[nodiscard]] QJsonObject toJson(const Meeting &meeting);
[[nodiscard]] QJsonArray toJson(const QList<Meeting> &meetings);

} // namespace kestrel
