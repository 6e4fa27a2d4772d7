#pragma once
#include <QByteArray>
#include <QLockFile>
#include <QString>
#include <chrono>
#include <expected>
#include <memory>

namespace kestrel {

/// Creates `folder`, and those above it that are missing, for this user alone (0700). The error is a
/// description.
[[nodiscard]] std::expected<void, QString> makePrivateFolder(const QString &folder);

/// Replaces the whole file or leaves it as it was; a symbolic link keeps pointing where it does. A new file
/// is this user's alone (0600) from its first byte, an existing one keeps its permissions. The error is a
/// description.
[[nodiscard]] std::expected<void, QString> replaceFile(const QString &path, const QByteArray &content);

/// What the file holds, nothing when there is none. Only regular files of at most 16 MiB are read.
[[nodiscard]] std::expected<QByteArray, QString> readFile(const QString &path);

/// Takes `<path>.lock`, the lock that QSettings takes too, and waits for it if another process has it.
[[nodiscard]] std::expected<std::unique_ptr<QLockFile>, QString> lockFile(const QString &path,
                                                                          std::chrono::milliseconds patience);

/// Keeps `content` as `<path>.broken`, or under the first such name with a number that is free. Nothing is
/// written when it is kept already.
[[nodiscard]] std::expected<void, QString> keepBroken(const QString &path, const QByteArray &content);

} // namespace kestrel
