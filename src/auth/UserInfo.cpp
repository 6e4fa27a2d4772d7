#include "auth/UserInfo.h"
#include "auth/JsonReader.h"

using namespace Qt::StringLiterals;

namespace kestrel::Google {

std::expected<UserInfo, DecodingError> UserInfo::fromJson(const QByteArray &json)
{
    JsonReader reader(json);
    return reader.finish(UserInfo {
        .email = reader.optionalString("email"_L1),
        .name = reader.optionalString("name"_L1),
    });
}

} // namespace kestrel::Google
