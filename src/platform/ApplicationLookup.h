#pragma once
#include <QString>
#include <optional>

namespace kestrel {

/// Finds installed applications by bundle identifier ("com.google.Chrome").
class ApplicationLookup
{
public:
    ApplicationLookup() = default;
    ApplicationLookup(const ApplicationLookup &) = delete;
    ApplicationLookup &operator=(const ApplicationLookup &) = delete;
    virtual ~ApplicationLookup() = default;

    /// The path of its .desktop file: native, Flatpak or Snap.
    [[nodiscard]] virtual std::optional<QString> locationOf(const QString &bundleIdentifier) const = 0;
};

} // namespace kestrel
