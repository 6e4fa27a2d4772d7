#pragma once
#include "base/DecodingError.h"
#include <QByteArray>
#include <QString>
#include <expected>
#include <optional>

namespace kestrel {

/// The token endpoint's answer (RFC 6749, section 5.1).
struct TokenResponse
{
    QString accessToken;
    std::optional<QString> refreshToken;
    std::optional<qint64> expiresIn; ///< seconds
    std::optional<QString> tokenType;
    std::optional<QString> scope;

    [[nodiscard]] static std::expected<TokenResponse, DecodingError> fromJson(const QByteArray &json);
};

} // namespace kestrel
