#include "base/Clock.h"
#include "support/EnglishTexts.h"
#include "ui/Colors.h"
#include "ui/Countdown.h"
#include "ui/DisplayFormats.h"
#include <QLocale>
#include <QTest>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace kestrel {

class TestFormats final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void formatsFollowLanguageAndLocale_data();
    void formatsFollowLanguageAndLocale();
    void countdownSaysHowNearAMeetingIs_data();
    void countdownSaysHowNearAMeetingIs();
    void stripesCanBeSeen_data();
    void stripesCanBeSeen();
    void placesBecomeMapSearches_data();
    void placesBecomeMapSearches();
};

namespace {

/// In Newfoundland, where the tests take place, it is 3½ hours earlier.
const Instant marchThird = parseInternetDateTime(u"2025-03-03T17:35:40Z").value();

QString durationOf(double seconds)
{
    return formatDuration(seconds);
}

QString backThen(double seconds)
{
    return relativeText(marchThird - secondsSpan(seconds), marchThird);
}

QString clockAt(double seconds)
{
    return clockTimeText(marchThird + secondsSpan(seconds));
}

QString dateAt(double seconds)
{
    return agendaDateText(marchThird + secondsSpan(seconds));
}

using Format = QString (*)(double);

} // namespace

void TestFormats::formatsFollowLanguageAndLocale_data()
{
    QTest::addColumn<Format>("format");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("expected");
    const auto row = [](Format format, double seconds, const char *locale, const QString &expected) {
        const QString language = QString::fromLatin1(locale).startsWith("es"_L1) ? u"es"_s : u"en"_s;
        QTest::addRow("%s", qPrintable(QLatin1StringView(locale) + u": "_s + expected))
            << format << seconds << language << QString::fromLatin1(locale) << expected;
    };
    row(clockAt, 0, "en_US", u"2:05 PM"_s);
    row(clockAt, -36000, "en_US", u"4:05 AM"_s);
    row(clockAt, 0, "de_DE", u"14:05"_s);
    row(clockAt, 0, "es_ES", u"14:05"_s);
    row(clockAt, -36000, "C", u"04:05"_s);
    row(dateAt, 0, "en_US", u"Monday, Mar 3"_s);
    row(dateAt, 10 * 3600, "en_US", u"Tuesday, Mar 4"_s);
    row(dateAt, 0, "es_ES", u"lunes, 3 mar"_s);
    row(durationOf, 0, "en_US", u"0 min"_s);
    row(durationOf, 59.4, "en_US", u"0 min"_s);
    row(durationOf, 59.5, "en_US", u"1 min"_s);
    row(durationOf, 3599.4, "es_ES", u"59 min"_s);
    row(durationOf, 3599.5, "en_US", u"1 h"_s);
    row(durationOf, 3659, "es_ES", u"1 h"_s);
    row(durationOf, 5400, "en_US", u"1 h 30 min"_s);
    row(durationOf, -125, "en_US", u"-2 min"_s);
    row(durationOf, -7325, "en_US", u"-2 h -2 min"_s);
    row(backThen, -30, "en_US", u"now"_s);
    row(backThen, 0.9, "es_ES", u"ahora"_s);
    row(backThen, 1, "en_US", u"1 second ago"_s);
    row(backThen, 59, "es_ES", u"hace 59 segundos"_s);
    row(backThen, 60, "en_US", u"1 minute ago"_s);
    row(backThen, 3599, "en_US", u"59 minutes ago"_s);
    row(backThen, 7200, "es_ES", u"hace 2 horas"_s);
    row(backThen, 86399, "en_US", u"23 hours ago"_s);
    row(backThen, 86400, "en_US", u"yesterday"_s);
    row(backThen, 3 * 86400, "es_ES", u"hace 3 días"_s);
}

void TestFormats::formatsFollowLanguageAndLocale()
{
    QFETCH(Format, format);
    QFETCH(double, seconds);
    QFETCH(QString, language);
    QFETCH(QString, locale);
    QFETCH(QString, expected);
    QTranslator translator;
    QVERIFY(translator.load(u":/i18n/kestrel_"_s + language));
    QCoreApplication::installTranslator(&translator);
    QLocale::setDefault(QLocale(locale));
    QCOMPARE(format(seconds), expected);
}

void TestFormats::countdownSaysHowNearAMeetingIs_data()
{
    QTest::addColumn<double>("remaining");
    QTest::addColumn<QString>("text");
    QTest::addColumn<Countdown::Nearness>("nearness");
    using enum Countdown::Nearness;
    QTest::newRow("30 s before") << 30.0 << u"Now"_s << Now;
    QTest::newRow("59.9 s after") << -59.9 << u"Now"_s << Now;
    QTest::newRow("60 s before") << 60.0 << u"In 1m"_s << Now;
    QTest::newRow("90 s before") << 90.0 << u"In 2m"_s << Now;
    QTest::newRow("just under 2 min before") << 119.999 << u"In 2m"_s << Now;
    QTest::newRow("2 min before") << 120.0 << u"In 2m"_s << Soon;
    QTest::newRow("just under 10 min before") << 599.999 << u"In 10m"_s << Soon;
    QTest::newRow("10 min before") << 600.0 << u"In 10m"_s << Later;
    QTest::newRow("59 min 1 s before") << 3541.0 << u"In 1h 0m"_s << Later;
    QTest::newRow("75 min before") << 4500.0 << u"In 1h 15m"_s << Later;
    QTest::newRow("5 min after") << -300.0 << u"5m ago"_s << Now;
}

void TestFormats::countdownSaysHowNearAMeetingIs()
{
    QFETCH(double, remaining);
    QFETCH(QString, text);
    QFETCH(Countdown::Nearness, nearness);
    const EnglishTexts texts;
    const FixedClock clock(marchThird);
    const Countdown countdown(clock, marchThird + secondsSpan(remaining));
    QCOMPARE(countdown.text(), text);
    QCOMPARE(countdown.nearness(), nearness);
}

void TestFormats::stripesCanBeSeen_data()
{
    QTest::addColumn<std::optional<QString>>("hex");
    QTest::addColumn<QColor>("fallback");
    QTest::addColumn<QColor>("expected");
    const std::optional<QString> none;
    const QColor grey = QColor::fromRgbF(0.55F, 0.55F, 0.62F);
    const QColor lime(0, 255, 0);
    QTest::newRow("the calendar's, however dark") << std::optional(u"#000001"_s) << lime << QColor(0, 0, 1);
    QTest::newRow("none") << none << lime << lime;
    QTest::newRow("without the sign") << std::optional(u"4DBED1"_s) << lime << QColor(0x4d, 0xbe, 0xd1);
    for (const QString &text : { u"lime"_s, u"##4dbed1"_s, u"#fff"_s, u"#ff4dbed1"_s, u"4dbeg1"_s,
                                 u"+4dbed"_s, u" 4dbed"_s, u"0x4dbe"_s, QString() })
        QTest::addRow("\"%s\"", qPrintable(text)) << std::optional(text) << lime << lime;
    QTest::newRow("dark fallback") << none << QColor(0, 0, 255) << grey;
    QTest::newRow("just bright enough") << none << QColor(77, 77, 77) << QColor(77, 77, 77);
    QTest::newRow("just too dark") << none << QColor(76, 76, 76) << grey;
}

void TestFormats::stripesCanBeSeen()
{
    QFETCH(std::optional<QString>, hex);
    QFETCH(QColor, fallback);
    QFETCH(QColor, expected);
    QCOMPARE(stripeColor(hex, fallback), expected);
}

void TestFormats::placesBecomeMapSearches_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QByteArray>("expected");
    const QByteArray start = "https://www.google.com/maps/search/?api=1&query=";
    QTest::newRow("blank") << u" \n\t"_s << QByteArray();
    QTest::newRow("trimmed") << u"\n Main Street 5 "_s << start + "Main%20Street%205";
    QTest::newRow("what has a meaning in a query")
        << u"A+B & C=D?#/%"_s << start + "A%2BB%20%26%20C%3DD%3F%23%2F%25";
    QTest::newRow("other scripts") << u"Café ☕"_s << start + "Caf%C3%A9%20%E2%98%95";
}

void TestFormats::placesBecomeMapSearches()
{
    QFETCH(QString, place);
    QFETCH(QByteArray, expected);
    const auto url = mapsSearchURL(place);
    QCOMPARE(url ? url->toEncoded() : QByteArray(), expected);
}

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestFormats)
#include "TestFormats.moc"
