#include "model/MeetingLinkDetector.h"
#include <QTest>

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

} // namespace

class TestMeetingLinkDetector final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void findsTheLinkInTheTexts_data()
    {
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("location");
        QTest::addColumn<QString>("found");
        const auto row = [](const char *name, const QString &description, const QString &location,
                            const QString &found) {
            QTest::newRow(name) << description << location << found;
        };

        // the platforms
        row("Meet", u"at https://meet.google.com/abc-defg-hij, please"_s, {},
            u"googleMeet https://meet.google.com/abc-defg-hij"_s);
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
            u"<a href=\"https://teams.microsoft.com/l/meetup-join/19%3a1/0?context=%7b%7d&amp;anon=true.\">x</a>"_s,
            {},
            u"microsoftTeams https://teams.microsoft.com/l/meetup-join/19%3A1/0?context=%7B%7D&anon=true."_s);
        row("Teams for consumers", u"https://teams.live.com/meet/93?p=x."_s, {},
            u"microsoftTeams https://teams.live.com/meet/93?p=x."_s);
        row("meetup-join elsewhere", u"https://example.org/l/meetup-join/1"_s, {},
            u"other:example.org https://example.org/l/meetup-join/1"_s);
        row("Zoom", u"https://us02web.zoom.us/j/123?pwd=a.b-c_d"_s, {},
            u"zoom https://us02web.zoom.us/j/123?pwd=a.b-c_d"_s);
        row("Zoom's path ends at a slash", u"https://a.zoom.us/my/ana/x"_s, {},
            u"zoom https://a.zoom.us/my/ana"_s);
        row("Zoom without a subdomain", u"https://zoom.us/j/1)"_s, {}, u"zoom https://zoom.us/j/1"_s);
        row("Zoom below two labels", u"https://a.b.zoom.us/j/1/x"_s, {}, u"zoom https://a.b.zoom.us/j/1/x"_s);
        row("Zoom with nothing behind the slash", u"https://a.zoom.us/j/ https://acme.webex.com/wbxmjs/1"_s,
            {}, u"webex https://acme.webex.com/wbxmjs/1"_s);
        row("a longer label before Zoom's domain", u"https://notzoom.us/j/1/x"_s, {},
            u"zoom https://notzoom.us/j/1/x"_s);
        row("a port", u"https://whereby.com:443/ana)"_s, {}, u"whereby https://whereby.com:443/ana"_s);
        row("Zoom's other pages", u"https://a.zoom.us/rec/1 https://a.zoom.us/j/2"_s, {},
            u"zoom https://a.zoom.us/j/2"_s);
        row("Webex", u"https://acme.webex.com/acme/j.php?MTID=m1 https://acme.webex.com/meet/ana"_s, {},
            u"webex https://acme.webex.com/meet/ana"_s);
        row("GoTo short link keeps its full stop", u"https://gotomeet.me/ana."_s, {},
            u"gotoMeeting https://gotomeet.me/ana."_s);
        row("GoTo with www", u"https://www.gotomeet.me/ana."_s, {},
            u"gotoMeeting https://www.gotomeet.me/ana."_s);
        row("GoTo's long short link is not allowlisted", u"https://gotomeeting.me/ana."_s, {},
            u"other:gotomeeting.me https://gotomeeting.me/ana"_s);
        row("GoTo global join", u"https://global.gotomeeting.com/join/1."_s, {},
            u"gotoMeeting https://global.gotomeeting.com/join/1."_s);
        row("Whereby", u"https://whereby.com/ana)"_s, {}, u"whereby https://whereby.com/ana)"_s);
        row("Whereby of a tenant", u"https://a-b.c.whereby.com/ana"_s, {},
            u"whereby https://a-b.c.whereby.com/ana"_s);
        row("a longer label before Whereby's domain", u"https://notwhereby.com/ana)"_s, {},
            u"whereby https://notwhereby.com/ana"_s);
        row("Whereby anywhere in the host", u"https://whereby.com.example.org/x"_s, {},
            u"whereby https://whereby.com.example.org/x"_s);
        row("Zoom only at the end of it", u"https://zoom.us.example.org/x"_s, {},
            u"other:zoom.us.example.org https://zoom.us.example.org/x"_s);
        row("Around has no platform of its own", u"https://meet.around.co/r/x"_s, {},
            u"other:meet.around.co https://meet.around.co/r/x"_s);
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

    void findsTheLinkInTheTexts()
    {
        QFETCH(const QString, description);
        QFETCH(const QString, location);
        QTEST(shown(MeetingLinkDetector().resolve({}, {}, description, location)), "found");
    }

    void prefersASafeConferenceLink_data()
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
        row("not a URL", u"https://meet.google.com/%"_s, {}, fromText);
        row("too long once encoded", u"https://meet.google.com/"_s + QString(400, u'ñ'), {}, fromText);
        row("2049 once encoded", u"https://meet.google.com/"_s + QString(2025, u'a'), {}, fromText);
    }

    void prefersASafeConferenceLink()
    {
        QFETCH(const QString, conference);
        QFETCH(const std::optional<MeetingPlatform>, hint);
        QTEST(shown(MeetingLinkDetector().resolve(QUrl(conference, QUrl::StrictMode), hint,
                                                  u"https://a.zoom.us/j/1"_s, {})),
              "found");
    }

    void decodesEntities_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("decoded");
        QTest::newRow("all") << u"&amp;&lt;&gt;&quot;&#39;&apos;&nbsp;|"_s << u"&<>\"'' |"_s;
        QTest::newRow("the ampersand first") << u"&amp;lt;&amp;nbsp;"_s << u"< "_s;
        QTest::newRow("only once") << u"&amp;amp;&amp;amp;lt;"_s << u"&amp;&amp;lt;"_s;
        QTest::newRow("cut off") << u"&am&lt&"_s << u"&am&lt&"_s;
        QTest::newRow("unknown ones") << u"&copy;&#38;"_s << u"&copy;&#38;"_s;
    }

    void decodesEntities()
    {
        QFETCH(const QString, text);
        QTEST(decodeHTMLEntities(text), "decoded");
    }

    void acceptsOnlySafeLinks_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("url"); // null: refused
        QTest::addColumn<bool>("isAllowlisted");
        const auto row = [](const char *name, const QString &text, const QString &url, bool isAllowlisted) {
            QTest::newRow(name) << text << url << isAllowlisted;
        };
        row("allowlisted", u"https://a.zoom.us/j/1"_s, u"https://a.zoom.us/j/1"_s, true);
        row("unknown host", u"https://talk.example.org/"_s, u"https://talk.example.org/"_s, false);
        row("escaped spaces are trimmed", u"&nbsp;https://zoom.us/?a&amp;b&nbsp;"_s,
            u"https://zoom.us/?a&b"_s, true);
        row("a user's name is no host", u"https://zoom.us@talk.example.org/"_s,
            u"https://zoom.us@talk.example.org/"_s, false);
        row("http", u"http://zoom.us/"_s, {}, false);
        row("no scheme", u"zoom.us/j/1"_s, {}, false);
        row("no host", u"https:///j/1"_s, {}, false);
        row("a space inside", u"https://zoom.us/a b"_s, {}, false);
        row("a faulty escape", u"https://zoom.us/%zz"_s, {}, false);
        row("an invisible character in front", u"\u200bhttps://zoom.us/"_s, {}, false);
        row("empty", u""_s, {}, false);
    }

    void acceptsOnlySafeLinks()
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

    void countsALinksCharacters_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("fits");
        const QString link = u"https://example.org/"_s;
        const qsizetype rest = 2048 - link.size();
        QTest::newRow("2048 after trimming") << u"  "_s + link + QString(rest, u'a') + u"&nbsp;\n"_s << true;
        QTest::newRow("2048 after decoding") << link + u"&amp;"_s.repeated(rest) << true;
        QTest::newRow("2048 of two units each") << link + u"🎉"_s.repeated(rest) << true;
        QTest::newRow("2049 of two units each") << link + u"🎉"_s.repeated(rest + 1) << false;
        QTest::newRow("far too many marks on one letter")
            << link + u"a"_s + QString(100'000, QChar(0x301)) << false;
    }

    void countsALinksCharacters()
    {
        QFETCH(const QString, text);
        QTEST(safeURL(text).has_value(), "fits");
    }

    void knowsTheAllowedHosts()
    {
        for (const auto &host :
             { u"meet.google.com"_s, u"zoom.us"_s, u"a.b.zoom.us"_s, u"teams.microsoft.com"_s,
               u"teams.live.com"_s, u"acme.webex.com"_s, u"gotomeet.me"_s, u"www.gotomeet.me"_s,
               u"gotomeeting.com"_s, u"global.gotomeeting.com"_s, u"whereby.com"_s, u"meet.around.co"_s })
            QVERIFY2(isAllowedMeetingHost(host), qPrintable(host));
        for (const auto &host :
             { u"google.com"_s, u"notzoom.us"_s, u"zoom.us.example.org"_s, u"gotomeeting.me"_s,
               u"notwhereby.com"_s, u"ZOOM.US"_s, u"zoom.us."_s, u""_s })
            QVERIFY2(!isAllowedMeetingHost(host), qPrintable(host));
    }

    // Quadratic work over these would not end within the test's time; the exact cost is the benchmarks'
    // business.
    void survivesHugeTexts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("found");
        constexpr qsizetype size = 2'000'000;
        const auto row = [](const char *name, const QString &text, const QString &found) {
            QTest::newRow(name) << text << found;
        };
        row("schemes without a space", u"https://"_s.repeated(size / 8), u"nothing"_s);
        row("links with spaces", u"https://a.zoom.us/j/ "_s.repeated(size / 21),
            u"zoom https://a.zoom.us/j/"_s);
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
        row("escaped spaces behind a link", u"https://whereby.com/a"_s + u"&nbsp;"_s.repeated(size / 6),
            u"whereby https://whereby.com/a"_s);
    }

    void survivesHugeTexts()
    {
        QFETCH(const QString, text);
        QTEST(shown(MeetingLinkDetector().resolve({}, {}, text, text)), "found");
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestMeetingLinkDetector)
#include "TestMeetingLinkDetector.moc"
