#include "model/MeetingPlatform.h"
#include "model/MeetingHosts.h"

using namespace Qt::StringLiterals;

namespace kestrel {

MeetingPlatform MeetingPlatform::other(const QString &text)
{
    MeetingPlatform platform(Kind::Other);
    platform.m_otherText = text;
    return platform;
}

QString MeetingPlatform::displayName() const
{
    switch (m_kind) {
    case Kind::GoogleMeet:
        return u"Google Meet"_s;
    case Kind::Zoom:
        return u"Zoom"_s;
    case Kind::MicrosoftTeams:
        return u"Microsoft Teams"_s;
    case Kind::Webex:
        return u"Webex"_s;
    case Kind::GotoMeeting:
        return u"GoToMeeting"_s;
    case Kind::Whereby:
        return u"Whereby"_s;
    case Kind::Other:
        return m_otherText;
    case Kind::InPerson:
        return qtTrId("platform.in_person");
    }
    Q_UNREACHABLE();
}

std::optional<Tint> MeetingPlatform::tint() const
{
    switch (m_kind) {
    case Kind::GoogleMeet:
        return Tint { 0.13, 0.52, 0.96 };
    case Kind::Zoom:
        return Tint { 0.18, 0.46, 0.96 };
    case Kind::MicrosoftTeams:
        return Tint { 0.42, 0.36, 0.79 };
    case Kind::Webex:
        return Tint { 0.0, 0.55, 0.55 };
    case Kind::GotoMeeting:
        return Tint { 0.95, 0.55, 0.15 };
    case Kind::Whereby:
        return Tint { 0.2, 0.2, 0.2 };
    case Kind::InPerson:
        return Tint { 0.45, 0.45, 0.45 };
    case Kind::Other:
        return {};
    }
    Q_UNREACHABLE();
}

QString MeetingPlatform::caseName() const
{
    switch (m_kind) {
    case Kind::GoogleMeet:
        return u"googleMeet"_s;
    case Kind::Zoom:
        return u"zoom"_s;
    case Kind::MicrosoftTeams:
        return u"microsoftTeams"_s;
    case Kind::Webex:
        return u"webex"_s;
    case Kind::GotoMeeting:
        return u"gotoMeeting"_s;
    case Kind::Whereby:
        return u"whereby"_s;
    case Kind::Other:
        return u"other:"_s + m_otherText;
    case Kind::InPerson:
        return u"inPerson"_s;
    }
    Q_UNREACHABLE();
}

size_t qHash(const MeetingPlatform &platform, size_t seed)
{
    return qHashMulti(seed, static_cast<int>(platform.kind()), platform.otherText());
}

MeetingPlatform classifyPlatform(const QUrl &url)
{
    const QString host = url.host().toLower();
    if (host.isEmpty())
        return MeetingPlatform::other(u"link"_s);
    if (host.endsWith(MeetingHosts::googleMeet))
        return MeetingPlatform::Kind::GoogleMeet;
    if (host.endsWith(MeetingHosts::zoom))
        return MeetingPlatform::Kind::Zoom;
    if (host.endsWith(MeetingHosts::teamsBusiness) || host.endsWith(MeetingHosts::teamsConsumer))
        return MeetingPlatform::Kind::MicrosoftTeams;
    if (host.endsWith(MeetingHosts::webex))
        return MeetingPlatform::Kind::Webex;
    if (host.endsWith(MeetingHosts::gotoShortLink) || host.endsWith(MeetingHosts::gotoMain))
        return MeetingPlatform::Kind::GotoMeeting;
    if (host.contains(MeetingHosts::whereby))
        return MeetingPlatform::Kind::Whereby;
    return MeetingPlatform::other(host);
}

} // namespace kestrel
