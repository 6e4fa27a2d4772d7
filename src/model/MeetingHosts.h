#pragma once
#include <QLatin1StringView>

/// The hosts of the meeting services, lower-case.
namespace kestrel::MeetingHosts {

inline constexpr QLatin1StringView googleMeet { "meet.google.com" };
inline constexpr QLatin1StringView zoom { "zoom.us" };
inline constexpr QLatin1StringView teamsBusiness { "teams.microsoft.com" };
inline constexpr QLatin1StringView teamsConsumer { "teams.live.com" };
inline constexpr QLatin1StringView webex { "webex.com" };
inline constexpr QLatin1StringView gotoShortLink { "gotomeet.me" };
inline constexpr QLatin1StringView gotoMain { "gotomeeting.com" };
inline constexpr QLatin1StringView gotoGlobalJoin { "global.gotomeeting.com" };
inline constexpr QLatin1StringView whereby { "whereby.com" };
inline constexpr QLatin1StringView around { "around.co" };

} // namespace kestrel::MeetingHosts
