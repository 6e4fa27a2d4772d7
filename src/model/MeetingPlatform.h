#pragma once
#include <QHashFunctions>
#include <QString>
#include <QUrl>
#include <optional>

namespace kestrel {

/// An sRGB colour, each component 0–1, opaque.
struct Tint
{
    double red = 0;
    double green = 0;
    double blue = 0;

    friend bool operator==(const Tint &, const Tint &) = default;
};

/// The service of a join link. `Other` carries a text: a host, or what there is to say instead of one.
class MeetingPlatform final
{
public:
    enum class Kind { GoogleMeet, Zoom, MicrosoftTeams, Webex, GotoMeeting, Whereby, Other, InPerson };

    /// Any kind but Other.
    MeetingPlatform(Kind kind)
        : m_kind(kind)
    {
    }
    [[nodiscard]] static MeetingPlatform other(const QString &text);

    [[nodiscard]] Kind kind() const { return m_kind; }
    /// What `other` carries; empty for every other kind.
    [[nodiscard]] const QString &otherText() const { return m_otherText; }

    /// The name as it is shown; localised where it is a word.
    [[nodiscard]] QString displayName() const;
    /// Nothing means the desktop's accent colour.
    [[nodiscard]] std::optional<Tint> tint() const;
    /// "googleMeet", "inPerson" …; "other:" and its text.
    [[nodiscard]] QString caseName() const;

    friend bool operator==(const MeetingPlatform &, const MeetingPlatform &) = default;

private:
    Kind m_kind;
    QString m_otherText;
};

[[nodiscard]] size_t qHash(const MeetingPlatform &platform, size_t seed = 0);

/// Which platform a link's host belongs to. Plain suffix tests without a label boundary.
[[nodiscard]] MeetingPlatform classifyPlatform(const QUrl &url);

} // namespace kestrel
