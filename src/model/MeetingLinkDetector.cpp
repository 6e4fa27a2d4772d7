#include "model/MeetingLinkDetector.h"
#include "model/MeetingHosts.h"
#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr qsizetype longestLink = 2048;

/// Unicode characters, not UTF-16 units. (User-perceived ones would put no bound on the text that QUrl is
/// given, and what is longer in characters is refused at the opening anyway.)
bool isLongerThanALink(QStringView text)
{
    if (text.size() <= longestLink)
        return false;
    if (text.size() > 2 * longestLink)
        return true;
    qsizetype pairs = 0;
    for (qsizetype i = 1; i < text.size(); ++i) {
        if (text[i].isLowSurrogate() && text[i - 1].isHighSurrogate())
            ++pairs;
    }
    return text.size() - pairs > longestLink;
}

/// The next `unit` from `from` on, or the end. In blocks, so that the compiler can compare many units at
/// once; a call of a library's search for each of a million hits would cost more than the search.
const QChar *find(const QChar *from, const QChar *end, char16_t unit)
{
    constexpr int block = 32;
    for (; end - from >= block; from += block) {
        bool isInside = false;
        for (int i = 0; i < block; ++i)
            isInside |= from[i] == unit;
        if (isInside)
            break;
    }
    return std::find(from, end, unit);
}

// --- entities

struct Entity
{
    QLatin1StringView name; ///< what follows the ampersand
    char16_t replacement;
};

// "&amp;" is not here: it is decoded before all others, so that "&amp;lt;" ends as "<".
constexpr std::array entities {
    Entity { "lt;"_L1, u'<' },   Entity { "gt;"_L1, u'>' },    Entity { "quot;"_L1, u'"' },
    Entity { "#39;"_L1, u'\'' }, Entity { "apos;"_L1, u'\'' }, Entity { "nbsp;"_L1, u' ' },
};
constexpr QLatin1StringView escapedAmpersand = "amp;"_L1;

bool beginsWith(const QChar *text, const QChar *end, QLatin1StringView literal)
{
    return end - text >= literal.size()
        && std::equal(literal.begin(), literal.end(), text, [](char expected, QChar c) {
               return c.unicode() == static_cast<unsigned char>(expected);
           });
}

/// One pass that gives what seven replacements one after the other would: an "&amp;" and then any other. The
/// others bring forth nothing that a later one could take for the beginning of an entity.
QString decodeFrom(QStringView text, qsizetype firstAmpersand)
{
    QString decoded(text.size(), Qt::Uninitialized);
    QChar *out = decoded.data();
    const QChar *const end = text.end();
    const QChar *at = text.begin();
    out = std::copy(at, at + firstAmpersand, out);
    for (at += firstAmpersand; at != end; ++out) {
        *out = *at++;
        if (*out != u'&')
            continue;
        if (beginsWith(at, end, escapedAmpersand))
            at += escapedAmpersand.size();
        const auto *const entity = std::find_if(entities.begin(), entities.end(),
                                                [&](const Entity &e) { return beginsWith(at, end, e.name); });
        if (entity != entities.end()) {
            *out = entity->replacement;
            at += entity->name.size();
        }
    }
    decoded.truncate(out - decoded.constData());
    return decoded;
}

// --- patterns

/// Lower-cases as a case-insensitive regular expression compares: the long s and the Kelvin sign are an s and
/// a k.
constexpr char16_t fold(QChar c)
{
    const char16_t unit = c.unicode();
    if (unit >= u'A' && unit <= u'Z')
        return static_cast<char16_t>(unit + (u'a' - u'A'));
    if (unit == 0x017F)
        return u's';
    return unit == 0x212A ? u'k' : unit;
}

bool isLetter(QChar c)
{
    const char16_t folded = fold(c);
    return folded >= u'a' && folded <= u'z';
}

bool isHostCharacter(QChar c)
{
    return isLetter(c) || (c >= u'0' && c <= u'9') || c == u'-' || c == u'.';
}

bool isZoomPathCharacter(QChar c)
{
    return isHostCharacter(c) || c == u'?' || c == u'&' || c == u'=' || c == u'_';
}

/// All but Unicode's white space, quotation marks and angle brackets.
bool isLinkCharacter(QChar c)
{
    return !c.isSpace() && c != u'"' && c != u'\'' && c != u'<' && c != u'>';
}

QStringView leading(QStringView text, bool (*belongs)(QChar))
{
    return text.first(std::find_if_not(text.begin(), text.end(), belongs) - text.begin());
}

/// Whether the texts are the same but for letter case; `lower` is lower-case.
bool equalsFolded(QStringView text, QLatin1StringView lower)
{
    return text.size() == lower.size()
        && std::equal(lower.begin(), lower.end(), text.begin(),
                      [](char expected, QChar c) { return fold(c) == static_cast<unsigned char>(expected); });
}

bool startsWithFolded(QStringView text, QLatin1StringView lower)
{
    return text.size() >= lower.size() && equalsFolded(text.first(lower.size()), lower);
}

bool endsWithFolded(QStringView text, QLatin1StringView lower)
{
    return text.size() >= lower.size() && equalsFolded(text.last(lower.size()), lower);
}

/// One label in front of the domain, and not more: [a-z0-9-]+\.
bool isSubdomain(QStringView host, QLatin1StringView domain)
{
    if (!endsWithFolded(host, domain))
        return false;
    const QStringView label = host.chopped(domain.size());
    return label.size() >= 2 && label.endsWith(u'.') && !label.chopped(1).contains(u'.');
}

/// Any of the beginnings and at least one character more; nothing but the path's end may end it.
template<typename... Beginnings>
QStringView wholePath(QStringView path, Beginnings... beginnings)
{
    const bool matches = ((path.size() > beginnings.size() && startsWithFolded(path, beginnings)) || ...);
    return matches ? path : QStringView();
}

/// [a-z]{3}-[a-z]{4}-[a-z]{3}(?:\?[^\s"'<>]*)?
QStringView meetPath(QStringView path)
{
    constexpr QStringView shape = u"/aaa-aaaa-aaa";
    if (path.size() < shape.size())
        return {};
    for (qsizetype i = 0; i < shape.size(); ++i) {
        if (shape[i] == u'a' ? !isLetter(path[i]) : path[i] != shape[i])
            return {};
    }
    return path.sliced(shape.size()).startsWith(u'?') ? path : path.first(shape.size());
}

/// /(?:j|my|w)/[A-Za-z0-9?&=._\-]+
QStringView zoomPath(QStringView path)
{
    for (const QLatin1StringView beginning : { "/j/"_L1, "/my/"_L1, "/w/"_L1 }) {
        if (!startsWithFolded(path, beginning))
            continue;
        const QStringView rest = leading(path.sliced(beginning.size()), isZoomPathCharacter);
        return rest.isEmpty() ? QStringView() : path.first(beginning.size() + rest.size());
    }
    return {};
}

/// The shape of a platform's links: https://, the host, the path. The comments say the same as regular
/// expressions; it is written out because eight of those cost more than all the rest of a page of events.
struct PlatformPattern
{
    MeetingPlatform::Kind platform;
    bool (*isHost)(QStringView host);
    QStringView (*path)(
        QStringView path); ///< how much of the path belongs to the link; null if it does not match
};

// In the order of preference.
constexpr std::array platformPatterns {
    // meet\.google\.com/[a-z]{3}-[a-z]{4}-[a-z]{3}(?:\?[^\s"'<>]*)?
    PlatformPattern { MeetingPlatform::Kind::GoogleMeet,
                      [](QStringView host) { return equalsFolded(host, MeetingHosts::googleMeet); },
                      meetPath },
    // teams\.microsoft\.com/l/meetup-join/[^\s"'<>]+
    PlatformPattern { MeetingPlatform::Kind::MicrosoftTeams,
                      [](QStringView host) { return equalsFolded(host, MeetingHosts::teamsBusiness); },
                      [](QStringView path) { return wholePath(path, "/l/meetup-join/"_L1); } },
    // teams\.live\.com/meet/[^\s"'<>]+
    PlatformPattern { MeetingPlatform::Kind::MicrosoftTeams,
                      [](QStringView host) { return equalsFolded(host, MeetingHosts::teamsConsumer); },
                      [](QStringView path) { return wholePath(path, "/meet/"_L1); } },
    // [a-z0-9-]+\.zoom\.us/(?:j|my|w)/[A-Za-z0-9?&=._\-]+
    PlatformPattern { MeetingPlatform::Kind::Zoom,
                      [](QStringView host) { return isSubdomain(host, MeetingHosts::zoom); }, zoomPath },
    // [a-z0-9-]+\.webex\.com/(?:meet|j\.php|wbxmjs)/[^\s"'<>]+
    PlatformPattern {
        MeetingPlatform::Kind::Webex, [](QStringView host) { return isSubdomain(host, MeetingHosts::webex); },
        [](QStringView path) { return wholePath(path, "/meet/"_L1, "/j.php/"_L1, "/wbxmjs/"_L1); } },
    // (?:www\.)?gotomeet(?:ing)?\.me/[^\s"'<>]+
    PlatformPattern { MeetingPlatform::Kind::GotoMeeting,
                      [](QStringView host) {
                          const QStringView domain =
                              startsWithFolded(host, "www."_L1) ? host.sliced(4) : host;
                          return equalsFolded(domain, MeetingHosts::gotoShortLink)
                              || equalsFolded(domain, "gotomeeting.me"_L1);
                      },
                      [](QStringView path) { return wholePath(path, "/"_L1); } },
    // global\.gotomeeting\.com/join/[^\s"'<>]+
    PlatformPattern { MeetingPlatform::Kind::GotoMeeting,
                      [](QStringView host) { return equalsFolded(host, MeetingHosts::gotoGlobalJoin); },
                      [](QStringView path) { return wholePath(path, "/join/"_L1); } },
    // [a-z0-9.-]*whereby\.com/[^\s"'<>]+
    PlatformPattern { MeetingPlatform::Kind::Whereby,
                      [](QStringView host) { return endsWithFolded(host, MeetingHosts::whereby); },
                      [](QStringView path) { return wholePath(path, "/"_L1); } },
};

/// A text in which links are looked for, and what was found: the first match of each pattern, null without
/// one.
struct SearchedText
{
    QString decoded;
    std::array<QStringView, platformPatterns.size()> ofPlatform;
    QStringView any; ///< https://[^\s"'<>]+
};

constexpr QLatin1StringView scheme = "https"_L1;
constexpr QLatin1StringView separator = "://"_L1;

/// Where the next "https://" begins, in any letter case; -1 when there is none.
qsizetype nextLink(QStringView text, qsizetype from)
{
    // colons are rarer than letters
    const QChar *colon = find(text.begin() + from, text.end(), u':');
    for (; colon != text.end(); colon = find(colon + 1, text.end(), u':')) {
        const qsizetype start = colon - text.begin() - scheme.size();
        if (start >= from && beginsWith(colon, text.end(), separator)
            && startsWithFolded(text.sliced(start), scheme))
            return start;
    }
    return -1;
}

/// Fills in the platforms whose first match a link is. `link` is all of it: every pattern consists of
/// characters that cannot end a link, so it matches inside or not at all.
void matchPlatforms(QStringView link, SearchedText &searched)
{
    const qsizetype hostAt = scheme.size() + separator.size();
    const QStringView host = leading(link.sliced(hostAt), isHostCharacter);
    const QStringView path = link.sliced(hostAt + host.size());
    // no character of a host ends it but the slash in front of the path
    if (!path.startsWith(u'/'))
        return;
    for (size_t i = 0; i < platformPatterns.size(); ++i) {
        if (!searched.ofPlatform[i].isNull() || !platformPatterns[i].isHost(host))
            continue;
        const QStringView matched = platformPatterns[i].path(path);
        if (!matched.isNull())
            searched.ofPlatform[i] = link.first(hostAt + host.size() + matched.size());
    }
}

SearchedText searchText(const QString &text)
{
    SearchedText searched;
    // An entity neither makes nor breaks an "https://", and nothing before the first one matters.
    const qsizetype first = nextLink(text, 0);
    if (first < 0)
        return searched;
    searched.decoded = decodeHTMLEntities(text.sliced(first));

    const QStringView decoded = searched.decoded;
    qsizetype linkEnd = 0;
    for (qsizetype at = 0; at >= 0; at = nextLink(decoded, at + scheme.size())) {
        const qsizetype hostAt = at + scheme.size() + separator.size();
        // One end holds for all links that stand together without a space: they are not scanned to it from
        // each.
        if (hostAt > linkEnd)
            linkEnd = hostAt + leading(decoded.sliced(hostAt), isLinkCharacter).size();
        if (hostAt == linkEnd)
            continue;
        const QStringView link = decoded.sliced(at, linkEnd - at);
        if (searched.any.isNull())
            searched.any = link;
        matchPlatforms(link, searched);
    }
    return searched;
}

/// Without what a sentence or brackets put behind a link.
QStringView withoutTrailingPunctuation(QStringView link)
{
    constexpr std::array<char16_t, 6> punctuation { u'>', u',', u'"', u'\'', u')', u'.' };
    qsizetype size = link.size();
    while (size > 0
           && std::find(punctuation.begin(), punctuation.end(), link[size - 1].unicode())
               != punctuation.end())
        --size;
    return link.first(size);
}

} // namespace

std::optional<MeetingLinkDetector::Resolution>
MeetingLinkDetector::resolve(const std::optional<QUrl> &conferenceURL,
                             const std::optional<MeetingPlatform> &hint, const QString &description,
                             const QString &location) const
{
    if (conferenceURL && isSafeMeetingURL(*conferenceURL))
        return Resolution { *conferenceURL, hint ? *hint : classifyPlatform(*conferenceURL) };

    const std::array texts { searchText(description), searchText(location) };
    for (const SearchedText &text : texts) {
        for (size_t i = 0; i < platformPatterns.size(); ++i) {
            if (text.ofPlatform[i].isNull())
                continue;
            if (const auto url = allowlistedMeetingURL(text.ofPlatform[i]))
                return Resolution { *url, platformPatterns[i].platform };
        }
    }
    for (const SearchedText &text : texts) {
        if (const auto url = safeURL(withoutTrailingPunctuation(text.any)))
            return Resolution { *url, classifyPlatform(*url) };
    }
    return {};
}

bool isAllowedMeetingHost(QStringView host)
{
    using namespace MeetingHosts;
    constexpr std::array allowed { googleMeet,    zoom,     teamsBusiness,  teamsConsumer, webex,
                                   gotoShortLink, gotoMain, gotoGlobalJoin, whereby,       around };
    return std::any_of(allowed.begin(), allowed.end(), [host](QLatin1StringView entry) {
        return host == entry || (host.endsWith(entry) && host.chopped(entry.size()).endsWith(u'.'));
    });
}

bool isSafeMeetingURL(const QUrl &url)
{
    return url.isValid() && url.scheme() == scheme && !url.host().isEmpty()
        && url.toEncoded().size() <= longestLink;
}

std::optional<QUrl> safeURL(QStringView text)
{
    QString decoded;
    QStringView link = text;
    if (const qsizetype ampersand = text.indexOf(u'&'); ampersand >= 0) {
        decoded = decodeFrom(text, ampersand);
        link = decoded;
    }
    link = link.trimmed();
    // most texts are no links at all, and QUrl takes its time to find that out
    if (!startsWithFolded(link, scheme) || isLongerThanALink(link))
        return {};
    QUrl url(link.toString(), QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != scheme || url.host().isEmpty())
        return {};
    return url;
}

std::optional<QUrl> allowlistedMeetingURL(QStringView text)
{
    auto url = safeURL(text);
    if (url && !isAllowedMeetingHost(url->host().toLower()))
        url.reset();
    return url;
}

QString decodeHTMLEntities(const QString &text)
{
    const qsizetype ampersand = text.indexOf(u'&');
    return ampersand < 0 ? text : decodeFrom(text, ampersand);
}

} // namespace kestrel
