#pragma once
#include "base/DecodingError.h"
#include <QByteArray>
#include <QString>
#include <expected>
#include <optional>

namespace kestrel::Google {

/// The answer of the OpenID Connect user-info endpoint.
struct UserInfo
{
    std::optional<QString> email;
    std::optional<QString> name;

    [[nodiscard]] static std::expected<UserInfo, DecodingError> fromJson(const QByteArray &json);
    friend bool operator==(const UserInfo &, const UserInfo &) = default;
};

} // namespace kestrel::Google
