#pragma once
#include <QString>

namespace kestrel {

/// Data from outside that is not what it should be. `description` names the place and the fault, in English,
/// for logs and error texts.
struct DecodingError
{
    QString description;

    friend bool operator==(const DecodingError &, const DecodingError &) = default;
};

} // namespace kestrel
