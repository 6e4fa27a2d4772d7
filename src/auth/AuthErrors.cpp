#include "auth/AuthErrors.h"

using namespace Qt::StringLiterals;

namespace kestrel {

QString OAuthError::description() const
{
    // the body comes last and by itself: it may hold a "%1" of its own
    switch (kind) {
    case Kind::TokenExchangeFailed:
        return u"Token exchange failed (%1): "_s.arg(status) + body;
    case Kind::RefreshFailed:
        return u"Refresh failed (%1): "_s.arg(status) + body;
    case Kind::StateMismatch:
        return u"OAuth state mismatch"_s;
    case Kind::NotSignedIn:
        return u"Not signed in"_s;
    case Kind::BrowserOpenFailed:
        return u"Could not open browser"_s;
    case Kind::UserCancelled:
        return u"Sign-in cancelled"_s;
    case Kind::OtherAccount:
        return u"This is another account, which was not signed in: "_s + body;
    }
    Q_UNREACHABLE();
}

QString description(LoopbackError error)
{
    switch (error) {
    case LoopbackError::BindFailed:
        return u"bindFailed"_s;
    case LoopbackError::Timeout:
        return u"timeout"_s;
    case LoopbackError::MalformedRequest:
        return u"malformedRequest"_s;
    case LoopbackError::BadHost:
        return u"badHost"_s;
    case LoopbackError::WrongPath:
        return u"wrongPath"_s;
    case LoopbackError::Cancelled:
        return u"cancelled"_s;
    }
    Q_UNREACHABLE();
}

QString KeychainError::description() const
{
    switch (kind) {
    case Kind::UnexpectedStatus:
        return u"Keychain OSStatus %1"_s.arg(status);
    case Kind::DecodingFailed:
        return u"Keychain item could not be decoded"_s;
    }
    Q_UNREACHABLE();
}

namespace {

struct Description
{
    QString operator()(LoopbackError error) const { return kestrel::description(error); }
    QString operator()(const TransportError &error) const { return error.description; }
    QString operator()(const DecodingError &error) const { return error.description; }
    QString operator()(const auto &error) const { return error.description(); }
};

} // namespace

QString description(const AuthError &error)
{
    return std::visit(Description(), error);
}

QString causeOf(const AuthError &error)
{
    if (const auto *oauth = std::get_if<OAuthError>(&error)) {
        // the text of these two ends with what the server sent
        if (oauth->kind == OAuthError::Kind::TokenExchangeFailed
            || oauth->kind == OAuthError::Kind::RefreshFailed)
            return u"HTTP %1 from the sign-in server"_s.arg(oauth->status);
        return oauth->description();
    }
    if (const auto *keychain = std::get_if<KeychainError>(&error))
        return keychain->kind == KeychainError::Kind::UnexpectedStatus
            ? u"keyring status %1"_s.arg(keychain->status)
            : u"a keyring item that cannot be understood"_s;
    if (const auto *loopback = std::get_if<LoopbackError>(&error))
        return description(*loopback);
    if (std::holds_alternative<DecodingError>(error))
        return u"an answer that cannot be understood"_s;
    switch (std::get<TransportError>(error).kind) {
    case TransportError::Kind::Network:
        return u"no connection"_s;
    case TransportError::Kind::Timeout:
        return u"no answer in time"_s;
    case TransportError::Kind::AnswerTooLarge:
        return u"an answer that is too large"_s;
    case TransportError::Kind::Superseded:
        return u"waiting for a network"_s;
    }
    Q_UNREACHABLE();
}

} // namespace kestrel
