#pragma once
#include <QString>
#include <QUrl>
#include <expected>

namespace kestrel {

/// Where Google answers.
struct GoogleEndpoints
{
    QUrl authorization;
    QUrl token;
    QUrl revocation;
    QUrl userInfo;
    QUrl calendarApi; ///< scheme and host; the paths stand in the client

    [[nodiscard]] static GoogleEndpoints publicHosts();
    /// All of them at one base. Only loopback bases are accepted; the error says why not.
    [[nodiscard]] static std::expected<GoogleEndpoints, QString> at(const QUrl &base);
};

/// The registered OAuth client. Secrets of installed applications are not confidential.
struct GoogleClient
{
    QString identifier;
    QString secret;

    [[nodiscard]] bool isComplete() const { return !identifier.isEmpty() && !secret.isEmpty(); }
};

} // namespace kestrel
