#include "auth/GoogleConfiguration.h"
#include "platform/HttpTransport.h"

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const QString authorizationPath = u"/o/oauth2/v2/auth"_s;
const QString tokenPath = u"/token"_s;
const QString revocationPath = u"/revoke"_s;
const QString userInfoPath = u"/v1/userinfo"_s;

QUrl below(const QUrl &base, const QString &path)
{
    QUrl url = base;
    url.setPath(base.path() + path);
    return url;
}

} // namespace

GoogleEndpoints GoogleEndpoints::publicHosts()
{
    const QUrl tokens(u"https://oauth2.googleapis.com"_s);
    return {
        .authorization = below(QUrl(u"https://accounts.google.com"_s), authorizationPath),
        .token = below(tokens, tokenPath),
        .revocation = below(tokens, revocationPath),
        .userInfo = below(QUrl(u"https://openidconnect.googleapis.com"_s), userInfoPath),
        .calendarApi = QUrl(u"https://www.googleapis.com"_s),
    };
}

std::expected<GoogleEndpoints, QString> GoogleEndpoints::at(const QUrl &base)
{
    if (!base.isValid() || (base.scheme() != "http"_L1 && base.scheme() != "https"_L1))
        return std::unexpected(u"The address must begin with http:// or https://."_s);
    if (!isLoopback(base))
        return std::unexpected(u"The address must be this computer's own (127.0.0.1, [::1] or localhost)."_s);
    if (!base.userInfo().isEmpty() || base.hasQuery() || base.hasFragment())
        return std::unexpected(u"The address may hold neither a user name nor a query nor a fragment."_s);
    QUrl trimmed = base;
    while (trimmed.path().endsWith(u'/'))
        trimmed.setPath(trimmed.path().chopped(1));
    return GoogleEndpoints {
        .authorization = below(trimmed, authorizationPath),
        .token = below(trimmed, tokenPath),
        .revocation = below(trimmed, revocationPath),
        .userInfo = below(trimmed, userInfoPath),
        .calendarApi = trimmed,
    };
}

} // namespace kestrel
