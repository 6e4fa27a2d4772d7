#pragma once
#include <QByteArray>
#include <QLatin1StringView>
#include <QString>
#include <QStringList>
#include <expected>
#include <optional>

namespace kestrel {

/// The value of `key` in the main group of a .desktop file, as it stands there; empty when it has none.
[[nodiscard]] QString desktopEntryValue(const QString &path, QLatin1StringView key);

/// Program and arguments of an Exec value (desktop entries of freedesktop.org, "The Exec key"). There is no
/// file or address to pass: field codes that stand for one go, as do icon, name and the entry's own path. The
/// error is a description.
[[nodiscard]] std::expected<QStringList, QString> execArguments(const QString &exec);

/// The .desktop file `entry` with the absolute path of its program in the place of its name, so that it is
/// found however the session's PATH is. Nothing when no entry can name that path.
[[nodiscard]] std::optional<QByteArray> withProgram(const QByteArray &entry, const QString &program);

} // namespace kestrel
