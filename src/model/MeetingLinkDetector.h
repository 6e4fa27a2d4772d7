#pragma once
#include "model/MeetingPlatform.h"
#include <QString>
#include <QStringView>
#include <QUrl>
#include <optional>

namespace kestrel {

/// Finds at most one join link in what an event offers. Stateless, so one may be shared by all threads.
/// Linear in the length of the texts, whatever stands in them.
class MeetingLinkDetector final
{
public:
    struct Resolution
    {
        QUrl url;
        MeetingPlatform platform;

        friend bool operator==(const Resolution &, const Resolution &) = default;
    };

    /// A safe conference link first, then the platforms' patterns over description and location, then any
    /// https link. An absent text is a null QString.
    [[nodiscard]] std::optional<Resolution> resolve(const std::optional<QUrl> &conferenceURL,
                                                    const std::optional<MeetingPlatform> &hint,
                                                    const QString &description,
                                                    const QString &location) const;
};

/// True for an allowlisted host and its subdomains; `host` is lower-case already.
[[nodiscard]] bool isAllowedMeetingHost(QStringView host);
/// https, a host, and at most 2048 characters.
[[nodiscard]] bool isSafeMeetingURL(const QUrl &url);
/// The URL in a text: entities decoded, trimmed, at most 2048 characters, https with a host; else nothing.
[[nodiscard]] std::optional<QUrl> safeURL(QStringView text);
/// As safeURL, and the host must be allowlisted.
[[nodiscard]] std::optional<QUrl> allowlistedMeetingURL(QStringView text);
[[nodiscard]] QString decodeHTMLEntities(const QString &text);

} // namespace kestrel
