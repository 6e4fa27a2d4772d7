#include "model/MeetingLinkDetector.h"
#include <QRegularExpression>
#include <QTest>
#include <random>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

using Resolution = MeetingLinkDetector::Resolution;

QString shown(const std::optional<Resolution> &resolution)
{
    if (!resolution)
        return u"nothing"_s;
    return resolution->platform.caseName() + u' ' + QString::fromUtf8(resolution->url.toEncoded());
}

/// What the detector says in other words: one regular expression a row, one replacement an entity.
class PlainDetector
{
public:
    PlainDetector()
    {
        add(MeetingPlatform::Kind::GoogleMeet,
            u"meet\\.google\\.com/[a-z]{3}-[a-z]{4}-[a-z]{3}(?:\\?LINK*)?"_s);
        add(MeetingPlatform::Kind::MicrosoftTeams, u"teams\\.microsoft\\.com/l/meetup-join/LINK+"_s);
        add(MeetingPlatform::Kind::MicrosoftTeams, u"teams\\.live\\.com/meet/LINK+"_s);
        add(MeetingPlatform::Kind::Zoom, u"[a-z0-9-]+\\.zoom\\.us/(?:j|my|w)/[A-Za-z0-9?&=._\\-]+"_s);
        add(MeetingPlatform::Kind::Webex, u"[a-z0-9-]+\\.webex\\.com/(?:meet|j\\.php|wbxmjs)/LINK+"_s);
        add(MeetingPlatform::Kind::GotoMeeting, u"(?:www\\.)?gotomeet(?:ing)?\\.me/LINK+"_s);
        add(MeetingPlatform::Kind::GotoMeeting, u"global\\.gotomeeting\\.com/join/LINK+"_s);
        add(MeetingPlatform::Kind::Whereby, u"[a-z0-9.-]*whereby\\.com/LINK+"_s);
        m_any = expression(u"LINK+"_s);
    }

    [[nodiscard]] std::optional<Resolution> resolve(const QString &description, const QString &location) const
    {
        for (const QString &text : { description, location }) {
            for (const auto &[platform, pattern] : m_patterns) {
                const auto match = pattern.match(decoded(text));
                if (!match.hasMatch())
                    continue;
                if (const auto url = allowlistedMeetingURL(match.captured()))
                    return Resolution { *url, platform };
            }
        }
        for (const QString &text : { description, location }) {
            QString link = m_any.match(decoded(text)).captured();
            while (!link.isEmpty() && u">,\"')."_s.contains(link.back()))
                link.chop(1);
            if (const auto url = safeURL(link))
                return Resolution { *url, classifyPlatform(*url) };
        }
        return {};
    }

    [[nodiscard]] static QString decoded(QString text)
    {
        return text.replace(u"&amp;"_s, u"&"_s)
            .replace(u"&lt;"_s, u"<"_s)
            .replace(u"&gt;"_s, u">"_s)
            .replace(u"&quot;"_s, u"\""_s)
            .replace(u"&#39;"_s, u"'"_s)
            .replace(u"&apos;"_s, u"'"_s)
            .replace(u"&nbsp;"_s, u" "_s);
    }

private:
    static QRegularExpression expression(QString tail)
    {
        // no white space, quotation mark or angle bracket; PCRE's own \s knows ASCII alone
        tail.replace(u"LINK"_s,
                     u"[^\\x{9}-\\x{d}\\x{20}\\x{85}\\x{a0}\\x{1680}\\x{2000}-\\x{200a}\\x{2028}\\x{2029}"
                     "\\x{202f}\\x{205f}\\x{3000}\"'<>]"_s);
        return QRegularExpression(u"https://"_s + tail, QRegularExpression::CaseInsensitiveOption);
    }

    void add(MeetingPlatform::Kind platform, const QString &tail)
    {
        m_patterns.append({ platform, expression(tail) });
    }

    QList<std::pair<MeetingPlatform::Kind, QRegularExpression>> m_patterns;
    QRegularExpression m_any;
};

/// Texts of the pieces that matter to a link, mostly in an order that nearly makes one.
class HostileTexts
{
public:
    QString next()
    {
        QString text;
        for (unsigned links = m_random() % 4; links > 0; --links)
            text += one(noise) + one(schemes) + one(hostBeginnings) + one(hosts) + one(paths) + one(endings)
                + one(noise);
        for (unsigned pieces = m_random() % 3; pieces > 0; --pieces)
            text += one(m_random() % 2 ? hosts : endings) + one(noise);
        return text;
    }

private:
    QString one(const QStringList &pieces) { return pieces[qsizetype(m_random() % unsigned(pieces.size()))]; }

    const QStringList schemes { u"https://"_s, u"https://"_s,      u"https://"_s,
                                u"HTTPS://"_s, u"Http\u017f://"_s, u"http://"_s,
                                u"https:/"_s,  u"xhttps://"_s,     u"https://https://"_s };
    const QStringList hostBeginnings { u""_s,     u""_s,        u"acme."_s, u"a.b."_s,  u"www."_s, u"-"_s,
                                       u"A-1."_s, u"\u212a."_s, u"ñ."_s,    u"user@"_s, u"."_s,    u"not"_s };
    const QStringList hosts { u"meet.google.com"_s, u"teams.microsoft.com"_s,
                              u"teams.live.com"_s,  u"zoom.us"_s,
                              u"Zoom.Us"_s,         u"zoom.u\u017f"_s,
                              u"webex.com"_s,       u"gotomeet.me"_s,
                              u"gotomeeting.me"_s,  u"global.gotomeeting.com"_s,
                              u"whereby.com"_s,     u"WHEREBY.com"_s,
                              u"notwhereby.com"_s,  u"whereby.com.evil.example"_s,
                              u"example.org"_s,     u"around.co"_s };
    const QStringList paths { u"/abc-defg-hij"_s,
                              u"/abc-defg-hi1"_s,
                              u"/Abc-dEfg-hi\u017f"_s,
                              u"/l/meetup-join/"_s,
                              u"/meet/"_s,
                              u"/j/"_s,
                              u"/my/"_s,
                              u"/w/"_s,
                              u"/J.PHP/"_s,
                              u"/wbxmjs/"_s,
                              u"/join/"_s,
                              u"/"_s,
                              u""_s,
                              u":443/j/"_s };
    const QStringList endings {
        u"123?pwd=a.b_c-d"_s, u"?x=1&amp;y=2"_s, u"a/b"_s,       u"%zz"_s,     u""_s,
        u"&amp;lt;"_s,        u"&nbsp;x"_s,      u"&amp;amp;"_s, u"ñ\u0301"_s, u"🎉"_s,
        u"\u3000z"_s,         u"&quot;q"_s,      u"&#39;"_s,     u"\u180e"_s,  u"1)."_s
    };
    const QStringList noise { u""_s,       u""_s,   u" "_s,  u"<a href=\""_s, u"\">"_s,
                              u"("_s,      u")."_s, u"\n"_s, u"&lt;"_s,       u"&amp;nbsp;"_s,
                              u"\u2028"_s, u"&"_s,  u"'"_s,  u"text: "_s,     u"."_s };
    std::mt19937 m_random { 2025 };
};

} // namespace

class TestMeetingLinkDetector final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void findsTheLinkInTheTexts_data();
    void findsTheLinkInTheTexts();
    void prefersASafeConferenceLink_data();
    void prefersASafeConferenceLink();
    void agreesWithPlainRegularExpressions();
    void decodesEntities_data();
    void decodesEntities();
    void decodesLikeSevenReplacements();
    void acceptsOnlySafeLinks_data();
    void acceptsOnlySafeLinks();
    void countsALinksCharacters_data();
    void countsALinksCharacters();
    void knowsTheAllowedHosts_data();
    void knowsTheAllowedHosts();
    void survivesHugeTexts_data();
    void survivesHugeTexts();
};

void TestMeetingLinkDetector::findsTheLinkInTheTexts_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("location");
    QTest::addColumn<QString>("found");
    const auto row = [](const char *name, const QString &description, const QString &location,
                        const QString &found) { QTest::newRow(name) << description << location << found; };

    // the platforms
    row("Meet", u"at https://meet.google.com/abc-defg-hij, please"_s, {},
        u"googleMeet https://meet.google.com/abc-defg-hij"_s);
    row("Meet in capitals", u"HTTPS://MEET.GOOGLE.COM/ABC-DEFG-HIJ"_s, {},
        u"googleMeet https://meet.google.com/ABC-DEFG-HIJ"_s);
    row("Meet with a query", u"<https://meet.google.com/abc-defg-hij?authuser=0&amp;hs=1>"_s, {},
        u"googleMeet https://meet.google.com/abc-defg-hij?authuser=0&hs=1"_s);
    row("Meet's path is cut after the code", u"https://meet.google.com/abc-defg-hij/x"_s, {},
        u"googleMeet https://meet.google.com/abc-defg-hij"_s);
    row("a code of other letters", u"https://meet.google.com/lookup/abc"_s, {},
        u"googleMeet https://meet.google.com/lookup/abc"_s);
    row("a second code is Meet's",
        u"https://meet.google.com/abc-defg-h1j https://meet.google.com/abc-defg-hij"_s, {},
        u"googleMeet https://meet.google.com/abc-defg-hij"_s);
    row("Teams, escaped",
        u"<a href=\"https://teams.microsoft.com/l/meetup-join/19%3a1/0?context=%7b%7d&amp;anon=true\">x</a>"_s,
        {}, u"microsoftTeams https://teams.microsoft.com/l/meetup-join/19%3A1/0?context=%7B%7D&anon=true"_s);
    row("Teams for consumers", u"https://teams.live.com/meet/93?p=x."_s, {},
        u"microsoftTeams https://teams.live.com/meet/93?p=x."_s);
    row("meetup-join elsewhere", u"https://example.org/l/meetup-join/1"_s, {},
        u"other:example.org https://example.org/l/meetup-join/1"_s);
    row("Zoom", u"https://us02web.zoom.us/j/123?pwd=a.b-c_d"_s, {},
        u"zoom https://us02web.zoom.us/j/123?pwd=a.b-c_d"_s);
    row("Zoom's path ends at a slash", u"https://a.zoom.us/my/ana/x"_s, {},
        u"zoom https://a.zoom.us/my/ana"_s);
    row("Zoom's path ends at a bracket", u"(https://a.zoom.us/w/1)"_s, {}, u"zoom https://a.zoom.us/w/1"_s);
    row("Zoom without a subdomain", u"https://zoom.us/j/1)"_s, {}, u"zoom https://zoom.us/j/1"_s);
    row("Zoom below two labels", u"https://a.b.zoom.us/j/1/x"_s, {}, u"zoom https://a.b.zoom.us/j/1/x"_s);
    row("Zoom's other pages", u"https://a.zoom.us/rec/1 https://a.zoom.us/j/2"_s, {},
        u"zoom https://a.zoom.us/j/2"_s);
    row("Webex", u"https://acme.webex.com/acme/j.php?MTID=m1 https://acme.webex.com/meet/ana"_s, {},
        u"webex https://acme.webex.com/meet/ana"_s);
    row("Webex without a subdomain", u"https://webex.com/meet/ana."_s, {},
        u"webex https://webex.com/meet/ana"_s);
    row("GoTo short link keeps its full stop", u"https://gotomeet.me/ana."_s, {},
        u"gotoMeeting https://gotomeet.me/ana."_s);
    row("GoTo with www", u"https://www.gotomeet.me/ana"_s, {}, u"gotoMeeting https://www.gotomeet.me/ana"_s);
    row("GoTo's long short link is not allowlisted", u"https://gotomeeting.me/ana."_s, {},
        u"other:gotomeeting.me https://gotomeeting.me/ana"_s);
    row("GoTo global join", u"https://global.gotomeeting.com/join/1"_s, {},
        u"gotoMeeting https://global.gotomeeting.com/join/1"_s);
    row("Whereby", u"https://whereby.com/ana)"_s, {}, u"whereby https://whereby.com/ana)"_s);
    row("Whereby of a tenant", u"https://a-b.c.whereby.com/ana"_s, {},
        u"whereby https://a-b.c.whereby.com/ana"_s);
    row("a longer label before Whereby's domain", u"https://notwhereby.com/ana)"_s, {},
        u"whereby https://notwhereby.com/ana"_s);
    row("no path, no platform", u"https://whereby.com/ https://whereby.com/ana"_s, {},
        u"whereby https://whereby.com/ana"_s);
    row("long s and Kelvin sign", u"https://\u212a.zoom.u\u017f/j/1/x"_s, {},
        u"zoom https://k.zoom.us/j/1"_s);

    // what comes first
    row("description before location", u"https://acme.webex.com/meet/ana"_s,
        u"https://meet.google.com/abc-defg-hij"_s, u"webex https://acme.webex.com/meet/ana"_s);
    row("platform in the location before any link of the description", u"https://example.org/"_s,
        u"https://a.zoom.us/j/1"_s, u"zoom https://a.zoom.us/j/1"_s);
    row("row before place", u"https://a.zoom.us/j/1 https://meet.google.com/abc-defg-hij"_s, {},
        u"googleMeet https://meet.google.com/abc-defg-hij"_s);
    row("a rejected row gives way to the next",
        u"https://meet.google.com/abc-defg-hij?%zz https://acme.webex.com/meet/ana"_s, {},
        u"webex https://acme.webex.com/meet/ana"_s);
    row("only a row's first match counts", u"https://notwhereby.com/a https://whereby.com/b"_s, {},
        u"whereby https://notwhereby.com/a"_s);
    row("a link inside another", u"https://example.org/?u=https://meet.google.com/abc-defg-hij"_s, {},
        u"googleMeet https://meet.google.com/abc-defg-hij"_s);

    // any link
    row("in brackets with a full stop", u"(see https://talk.example.org/room)."_s, {},
        u"other:talk.example.org https://talk.example.org/room"_s);
    row("all that is trailing", u"https://talk.example.org/a,).,"_s, {},
        u"other:talk.example.org https://talk.example.org/a"_s);
    row("in quotes", u"'https://talk.example.org/a'"_s, {},
        u"other:talk.example.org https://talk.example.org/a"_s);
    row("ends at a no-break space", u"https://talk.example.org/a\u00a0b"_s, {},
        u"other:talk.example.org https://talk.example.org/a"_s);
    row("a faulty first link hides the rest of its text",
        u"https://talk.example.org/%zz https://talk.example.org/a"_s, u"https://other.example.org/b"_s,
        u"other:other.example.org https://other.example.org/b"_s);
    row("an unclosed scheme does not", u"https:// https://talk.example.org/a"_s, {},
        u"other:talk.example.org https://talk.example.org/a"_s);
    row("http is no link", u"http://meet.google.com/abc-defg-hij"_s, {}, u"nothing"_s);
    row("letters before the scheme", u"xhttps://talk.example.org/a"_s, {},
        u"other:talk.example.org https://talk.example.org/a"_s);
    row("a room", {}, u"Room 5"_s, u"nothing"_s);
    row("nothing", {}, {}, u"nothing"_s);
    row("an escaped tag ends a link", u"https://talk.example.org/a&lt;br&gt;b"_s, {},
        u"other:talk.example.org https://talk.example.org/a"_s);
    row("a doubly escaped tag does too", u"https://talk.example.org/a&amp;lt;br"_s, {},
        u"other:talk.example.org https://talk.example.org/a"_s);
    row("what is left is decoded again", u"https://talk.example.org/?a&amp;amp;b"_s, {},
        u"other:talk.example.org https://talk.example.org/?a&b"_s);
    row("a lone surrogate beside a link",
        QString(QChar(0xD800)) + u" https://a.zoom.us/j/1"_s + QChar(0xDC00), {},
        u"zoom https://a.zoom.us/j/1"_s);
}

void TestMeetingLinkDetector::findsTheLinkInTheTexts()
{
    QFETCH(const QString, description);
    QFETCH(const QString, location);
    QTEST(shown(MeetingLinkDetector().resolve({}, {}, description, location)), "found");
}

void TestMeetingLinkDetector::prefersASafeConferenceLink_data()
{
    QTest::addColumn<QString>("conference");
    QTest::addColumn<std::optional<MeetingPlatform>>("hint");
    QTest::addColumn<QString>("found");
    const auto row = [](const char *name, const QString &conference,
                        const std::optional<MeetingPlatform> &hint,
                        const QString &found) { QTest::newRow(name) << conference << hint << found; };
    const QString fromText = u"zoom https://a.zoom.us/j/1"_s;
    row("with its hint", u"https://meet.google.com/x"_s, MeetingPlatform(MeetingPlatform::Kind::Webex),
        u"webex https://meet.google.com/x"_s);
    row("without a hint", u"https://meet.google.com/x"_s, {}, u"googleMeet https://meet.google.com/x"_s);
    row("off the allowlist", u"https://talk.example.org/x"_s, {},
        u"other:talk.example.org https://talk.example.org/x"_s);
    row("http", u"http://meet.google.com/x"_s, {}, fromText);
    row("no host", u"https:///x"_s, {}, fromText);
    row("not a URL", u"https://meet.google.com/%"_s, {}, fromText);
    row("too long once encoded", u"https://meet.google.com/"_s + QString(400, u'ñ'), {}, fromText);
    row("2048 once encoded", u"https://meet.google.com/"_s + QString(2024, u'a'), {},
        u"googleMeet https://meet.google.com/"_s + QString(2024, u'a'));
    row("2049 once encoded", u"https://meet.google.com/"_s + QString(2025, u'a'), {}, fromText);
}

void TestMeetingLinkDetector::prefersASafeConferenceLink()
{
    QFETCH(const QString, conference);
    QFETCH(const std::optional<MeetingPlatform>, hint);
    QTEST(shown(MeetingLinkDetector().resolve(QUrl(conference, QUrl::StrictMode), hint,
                                              u"https://a.zoom.us/j/1"_s, {})),
          "found");
}

void TestMeetingLinkDetector::agreesWithPlainRegularExpressions()
{
    const PlainDetector plain;
    HostileTexts texts;
    QHash<QString, int> outcomes;
    for (int i = 0; i < 6000; ++i) {
        const QString description = texts.next();
        const QString location = texts.next();
        const QString expected = shown(plain.resolve(description, location));
        const QString found = shown(MeetingLinkDetector().resolve({}, {}, description, location));
        if (found != expected)
            QFAIL(qPrintable(u"[%1] [%2]: %3 instead of %4"_s.arg(description, location, found, expected)));
        ++outcomes[found.section(u' ', 0, 0)];
    }
    // the texts reach every platform and every way out
    for (const QString &outcome : { u"nothing"_s, u"googleMeet"_s, u"microsoftTeams"_s, u"zoom"_s, u"webex"_s,
                                    u"gotoMeeting"_s, u"whereby"_s, u"other:example.org"_s })
        QVERIFY2(outcomes.value(outcome) > 20, qPrintable(outcome));
}

void TestMeetingLinkDetector::decodesEntities_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("decoded");
    QTest::newRow("all") << u"&amp;&lt;&gt;&quot;&#39;&apos;&nbsp;|"_s << u"&<>\"'' |"_s;
    QTest::newRow("the ampersand first") << u"&amp;lt;&amp;nbsp;"_s << u"< "_s;
    QTest::newRow("only once") << u"&amp;amp;&amp;amp;lt;"_s << u"&amp;&amp;lt;"_s;
    QTest::newRow("letter case matters") << u"&AMP;&Lt;"_s << u"&AMP;&Lt;"_s;
    QTest::newRow("cut off") << u"&am&lt&"_s << u"&am&lt&"_s;
    QTest::newRow("unknown ones") << u"&copy;&#38;"_s << u"&copy;&#38;"_s;
    QTest::newRow("in a row") << u"&&amp;&&lt;;"_s << u"&&&<;"_s;
    QTest::newRow("none") << u"plain"_s << u"plain"_s;
}

void TestMeetingLinkDetector::decodesEntities()
{
    QFETCH(const QString, text);
    QTEST(decodeHTMLEntities(text), "decoded");
}

void TestMeetingLinkDetector::decodesLikeSevenReplacements()
{
    const QStringList pieces { u"&"_s,    u"&"_s,     u"amp;"_s,  u"amp;"_s, u"lt;"_s, u"gt;"_s, u"quot;"_s,
                               u"#39;"_s, u"apos;"_s, u"nbsp;"_s, u";"_s,    u"a"_s,   u"l"_s,   u" "_s };
    std::mt19937 random(7);
    for (int i = 0; i < 20'000; ++i) {
        QString text;
        for (unsigned count = random() % 12; count > 0; --count)
            text += pieces[qsizetype(random() % unsigned(pieces.size()))];
        QCOMPARE(decodeHTMLEntities(text), PlainDetector::decoded(text));
    }
}

void TestMeetingLinkDetector::acceptsOnlySafeLinks_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("url"); // null: refused
    QTest::addColumn<bool>("isAllowlisted");
    const auto row = [](const char *name, const QString &text, const QString &url, bool isAllowlisted) {
        QTest::newRow(name) << text << url << isAllowlisted;
    };
    row("allowlisted", u"https://a.zoom.us/j/1"_s, u"https://a.zoom.us/j/1"_s, true);
    row("unknown host", u"https://talk.example.org/"_s, u"https://talk.example.org/"_s, false);
    row("trimmed", u" \n\u2003https://zoom.us/j/1\t"_s, u"https://zoom.us/j/1"_s, true);
    row("escaped spaces are trimmed", u"&nbsp;https://zoom.us/?a&amp;b&nbsp;"_s, u"https://zoom.us/?a&b"_s,
        true);
    row("capitals", u"HTTPS://A.ZOOM.US/J"_s, u"https://a.zoom.us/J"_s, true);
    row("a user's name is no host", u"https://zoom.us@talk.example.org/"_s,
        u"https://zoom.us@talk.example.org/"_s, false);
    row("look-alike", u"https://notzoom.us/"_s, u"https://notzoom.us/"_s, false);
    row("http", u"http://zoom.us/"_s, {}, false);
    row("other scheme", u"httpsx://zoom.us/"_s, {}, false);
    row("no scheme", u"zoom.us/j/1"_s, {}, false);
    row("no host", u"https:///j/1"_s, {}, false);
    row("opaque", u"https:zoom.us"_s, {}, false);
    row("a space inside", u"https://zoom.us/a b"_s, {}, false);
    row("a faulty escape", u"https://zoom.us/%zz"_s, {}, false);
    row("an invisible character in front", u"\u200bhttps://zoom.us/"_s, {}, false);
    row("text before it", u"see https://zoom.us/"_s, {}, false);
    row("empty", u""_s, {}, false);
}

void TestMeetingLinkDetector::acceptsOnlySafeLinks()
{
    QFETCH(const QString, text);
    QFETCH(const QString, url);
    QFETCH(const bool, isAllowlisted);
    const auto safe = safeURL(text);
    QCOMPARE(safe.has_value(), !url.isNull());
    if (safe)
        QCOMPARE(QString::fromUtf8(safe->toEncoded()), url);
    QCOMPARE(allowlistedMeetingURL(text), isAllowlisted ? safe : std::nullopt);
}

void TestMeetingLinkDetector::countsALinksCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("fits");
    const QString link = u"https://example.org/"_s;
    const qsizetype rest = 2048 - link.size();
    QTest::newRow("2048") << link + QString(rest, u'a') << true;
    QTest::newRow("2049") << link + QString(rest + 1, u'a') << false;
    QTest::newRow("2048 after trimming") << u"  "_s + link + QString(rest, u'a') + u"&nbsp;\n"_s << true;
    QTest::newRow("2048 after decoding") << link + u"&amp;"_s.repeated(rest) << true;
    QTest::newRow("2048 of two units each") << link + u"🎉"_s.repeated(rest) << true;
    QTest::newRow("2049 of two units each") << link + u"🎉"_s.repeated(rest + 1) << false;
    QTest::newRow("far too many marks on one letter")
        << link + u"a"_s + QString(100'000, QChar(0x301)) << false;
}

void TestMeetingLinkDetector::countsALinksCharacters()
{
    QFETCH(const QString, text);
    QTEST(safeURL(text).has_value(), "fits");
}

void TestMeetingLinkDetector::knowsTheAllowedHosts_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<bool>("isAllowed");
    for (const char *host :
         { "meet.google.com", "zoom.us", "us02web.zoom.us", "a.b.zoom.us", "teams.microsoft.com",
           "teams.live.com", "acme.webex.com", "gotomeet.me", "www.gotomeet.me", "gotomeeting.com",
           "global.gotomeeting.com", "whereby.com", "meet.around.co" })
        QTest::newRow(host) << QString::fromLatin1(host) << true;
    for (const char *host : { "google.com", "notzoom.us", "zoom.us.example.org", "microsoft.com",
                              "gotomeeting.me", "notwhereby.com", "ZOOM.US", "zoom.us.", "" })
        QTest::newRow(host) << QString::fromLatin1(host) << false;
}

void TestMeetingLinkDetector::knowsTheAllowedHosts()
{
    QFETCH(const QString, host);
    QTEST(isAllowedMeetingHost(host), "isAllowed");
}

// Quadratic work over these would not end within the test's time; the exact cost is the benchmarks' business.
void TestMeetingLinkDetector::survivesHugeTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("found");
    constexpr qsizetype size = 2'000'000;
    const auto row = [](const char *name, const QString &text, const QString &found) {
        QTest::newRow(name) << text << found;
    };
    row("schemes without a space", u"https://"_s.repeated(size / 8), u"nothing"_s);
    row("links without a space", u"https://whereby.com/"_s.repeated(size / 20), u"nothing"_s);
    row("links with spaces", u"https://a.zoom.us/j/ "_s.repeated(size / 21), u"zoom https://a.zoom.us/j/"_s);
    row("one host", u"https://"_s + u"a."_s.repeated(size / 2) + u"whereby"_s, u"nothing"_s);
    row(
        "a host of many different letters",
        [] {
            QString host;
            for (char16_t i = 0; i < 30'000; ++i)
                host += QChar(static_cast<char16_t>(0x4E00 + i % 20'000));
            return u"https://"_s + host.repeated(size / 30'000) + u"/"_s;
        }(),
        u"nothing"_s);
    row("escaped ampersands", u"https://example.org/?"_s + u"&amp;"_s.repeated(size / 5), u"nothing"_s);
    row("escaped spaces behind a link", u"https://whereby.com/a"_s + u"&nbsp;"_s.repeated(size / 6),
        u"whereby https://whereby.com/a"_s);
    row("a link at the very end", u"x "_s.repeated(size / 2) + u"https://a.zoom.us/j/1"_s,
        u"zoom https://a.zoom.us/j/1"_s);
}

void TestMeetingLinkDetector::survivesHugeTexts()
{
    QFETCH(const QString, text);
    QTEST(shown(MeetingLinkDetector().resolve({}, {}, text, text)), "found");
}

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestMeetingLinkDetector)
#include "TestMeetingLinkDetector.moc"
