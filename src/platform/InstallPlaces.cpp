#include "platform/InstallPlaces.h"
#include <algorithm>

namespace kestrel {

bool InstallPlaces::isPassing(const QString &path) const
{
    return !path.startsWith(home + u'/') && std::ranges::any_of(passing, [&path](const QString &beginning) {
        return path.startsWith(beginning);
    });
}

} // namespace kestrel
