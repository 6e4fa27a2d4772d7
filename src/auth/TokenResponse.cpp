#include "auth/TokenResponse.h"
#include "auth/JsonReader.h"

using namespace Qt::StringLiterals;

namespace kestrel {

std::expected<TokenResponse, DecodingError> TokenResponse::fromJson(const QByteArray &json)
{
    JsonReader reader(json);
    return reader.finish(TokenResponse {
        .accessToken = reader.string("access_token"_L1),
        .refreshToken = reader.optionalString("refresh_token"_L1),
        .expiresIn = reader.optionalInteger("expires_in"_L1),
        .tokenType = reader.optionalString("token_type"_L1),
        .scope = reader.optionalString("scope"_L1),
    });
}

} // namespace kestrel
