#include "platform/HttpTransport.h"
#include <QHostAddress>
#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// -1 for schemes that are not HTTP's.
int portOf(const QUrl &url)
{
    if (url.scheme() == "https"_L1)
        return url.port(443);
    return url.scheme() == "http"_L1 ? url.port(80) : -1;
}

} // namespace

QString HttpResponse::bodyText() const
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(body);
    return decoder.hasError() ? QString() : text;
}

bool isLoopback(const QUrl &url)
{
    return url.host() == "localhost"_L1 || QHostAddress(url.host()).isLoopback();
}

bool isSameOrigin(const QUrl &one, const QUrl &other)
{
    return one.scheme() == other.scheme() && one.host() == other.host() && portOf(one) == portOf(other);
}

std::optional<QUrl> redirectTarget(const QUrl &from, const QByteArray &location)
{
    const QUrl relative = QUrl::fromEncoded(location, QUrl::StrictMode);
    if (location.isEmpty() || !relative.isValid())
        return {};
    QUrl target = from.resolved(relative);
    target.setUserInfo({});
    const bool isDowngrade = from.scheme() == "https"_L1 && target.scheme() != "https"_L1;
    if (portOf(target) < 0 || target.host().isEmpty() || isDowngrade)
        return {};
    return target;
}

} // namespace kestrel
