#pragma once
#include <QByteArray>
#include <QString>

namespace kestrel {

/// The page's logo: the SVG file at `path`, or a plain mark when that is missing, unreadable or empty.
[[nodiscard]] QString logoElement(const QString &path);

/// What the browser shows when a sign-in has come back: UTF-8, complete in itself.
[[nodiscard]] QByteArray resultPage(const QString &message, const QString &logo);

} // namespace kestrel
