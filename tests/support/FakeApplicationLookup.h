#pragma once
#include "platform/ApplicationLookup.h"
#include <QMap>

namespace kestrel {

/// What stands in `locations` is installed.
class FakeApplicationLookup final : public ApplicationLookup
{
public:
    [[nodiscard]] std::optional<QString> locationOf(const QString &bundleIdentifier) const override
    {
        const auto found = locations.find(bundleIdentifier);
        return found == locations.end() ? std::optional<QString>() : *found;
    }

    QMap<QString, QString> locations;
};

} // namespace kestrel
