#pragma once
#include <QString>
#include <optional>

namespace kestrel {

/// What proves that the one who asked for a sign-in is the one who gets it: PKCE's verifier and challenge
/// (RFC 7636, method S256), and the state that comes back with the code. Good for one sign-in.
struct SignInSecrets
{
    QString verifier;
    QString challenge;
    QString state;

    /// Nothing when the system has no secure random bytes to give.
    [[nodiscard]] static std::optional<SignInSecrets> generate();
};

} // namespace kestrel
