#pragma once
#include "base/DecodingError.h"
#include "platform/HttpTransport.h"
#include <QString>
#include <variant>

namespace kestrel {

struct OAuthError
{
    enum class Kind {
        TokenExchangeFailed,
        RefreshFailed,
        StateMismatch,
        NotSignedIn,
        BrowserOpenFailed,
        UserCancelled,
        OtherAccount ///< the person chose another one than the one that was to be signed in
    };
    Kind kind = Kind::NotSignedIn;
    int status = 0; ///< HTTP status of the two first kinds, -1 when the answer was not HTTP
    QString body; ///< of the two first kinds; of OtherAccount the address that was chosen

    [[nodiscard]] QString description() const;
    friend bool operator==(const OAuthError &, const OAuthError &) = default;
};

enum class LoopbackError { BindFailed, Timeout, MalformedRequest, BadHost, WrongPath, Cancelled };

/// The case's name: "bindFailed", "timeout" …
[[nodiscard]] QString description(LoopbackError error);

struct KeychainError
{
    enum class Kind { UnexpectedStatus, DecodingFailed };
    Kind kind = Kind::UnexpectedStatus;
    qint32 status = 0; ///< of UnexpectedStatus; the numbers are SecretStatus's

    [[nodiscard]] QString description() const;
    friend bool operator==(const KeychainError &, const KeychainError &) = default;
};

/// Everything that sign-in, refresh and user info can fail with.
using AuthError = std::variant<OAuthError, LoopbackError, KeychainError, TransportError, DecodingError>;

[[nodiscard]] QString description(const AuthError &error);

/// What kind of failure it was and its number, without a word that somebody else wrote: it may be shown to
/// anybody.
[[nodiscard]] QString causeOf(const AuthError &error);

} // namespace kestrel
