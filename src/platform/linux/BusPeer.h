#pragma once
#include <QCoro/QCoroTask>
#include <QDBusConnection>
#include <QString>
#include <optional>

namespace kestrel {

/// The process that owns a name on the bus; nothing where nobody does. Starts no service.
[[nodiscard]] QCoro::Task<std::optional<qint64>> processOf(QDBusConnection bus, QString name);

/// What the process is called; empty where that cannot be known.
[[nodiscard]] QString processName(qint64 process);

} // namespace kestrel
