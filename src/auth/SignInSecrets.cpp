#include "auth/SignInSecrets.h"
#include <QCryptographicHash>
#include <sys/random.h>

namespace kestrel {

namespace {

constexpr qsizetype verifierSize = 64;
constexpr qsizetype stateSize = 32;

QByteArray base64Url(const QByteArray &bytes)
{
    return bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

} // namespace

std::optional<SignInSecrets> SignInSecrets::generate()
{
    // the system's own call: QRandomGenerator does not say when its source fails. Up to 256 bytes come whole.
    QByteArray random(verifierSize + stateSize, Qt::Uninitialized);
    if (getrandom(random.data(), size_t(random.size()), 0) != random.size())
        return {};
    const QByteArray verifier = base64Url(random.first(verifierSize));
    return SignInSecrets {
        .verifier = QString::fromLatin1(verifier),
        .challenge =
            QString::fromLatin1(base64Url(QCryptographicHash::hash(verifier, QCryptographicHash::Sha256))),
        .state = QString::fromLatin1(base64Url(random.last(stateSize))),
    };
}

} // namespace kestrel
