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

} // namespace kestrel
