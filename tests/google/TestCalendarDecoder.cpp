#include "google/CalendarDecoder.h"
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

QByteArray eventsList(const QByteArray &event)
{
    return R"({"items": [{"id": "0"}, )" + event + "]}";
}

} // namespace

class TestCalendarDecoder final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void takesNullAndAbsenceForTheSame();
    void keepsTextsApart();
    void readsTheCalendarList();
    void readsDateTimes_data();
    void readsDateTimes();
    void namesThePlaceOfAFault_data();
    void namesThePlaceOfAFault();
    void refusesWhatIsNoJson_data();
    void refusesWhatIsNoJson();
    void worksOnAfterAHugeAnswer();
};

void TestCalendarDecoder::takesNullAndAbsenceForTheSame()
{
    const QByteArray nulls =
        R"({"id": "", "status": null, "summary": null, "description": null, "location": null,
            "htmlLink": null, "start": null, "end": null, "attendees": null, "organizer": null,
            "hangoutLink": null, "conferenceData": null})";
    for (const QByteArray &event : { R"({"id": ""})"_ba, nulls }) {
        const auto answer = decodeEventsList(eventsList(event));
        QVERIFY2(answer, qPrintable(answer.error().description));
        const Google::Event &read = answer->items.last();
        QVERIFY(!read.status && !read.summary && !read.description && !read.location && !read.htmlLink
                && !read.start && !read.end && !read.attendees && !read.organizer && !read.hangoutLink
                && !read.conferenceData);
    }
}

// Texts that come again are shared: none may ever turn up in another's place.
void TestCalendarDecoder::keepsTextsApart()
{
    QByteArrayList attendees;
    QStringList emails;
    for (int i = 0; i < 20'000; ++i) {
        emails << u"%1%2@example.com"_s.arg(u"x"_s.repeated(i % 70)).arg(i % 5000);
        attendees << R"({"email": ")" + emails.last().toUtf8() + R"(", "displayName": ")"
                + QByteArray::number(i) + R"("})";
    }
    const auto answer =
        decodeEventsList(eventsList(R"({"id": "1", "attendees": [)" + attendees.join(',') + "]}"));
    QVERIFY(answer);
    const auto &read = answer->items.last().attendees.value();
    QCOMPARE(read.size(), emails.size());
    for (int i = 0; i < read.size(); ++i) {
        QCOMPARE(read[i].email, emails[i]);
        QCOMPARE(read[i].displayName, QString::number(i));
    }
}

void TestCalendarDecoder::readsTheCalendarList()
{
    const auto answer = decodeCalendarList(R"({"items": [
        {"id": "ana@example.com", "summary": "Ana", "primary": true, "backgroundColor": "#4986e7", "selected": true},
        {"id": "team", "summary": "", "primary": null}
    ]})"_ba);
    QVERIFY2(answer, qPrintable(answer.error().description));
    QCOMPARE(answer->items.size(), 2);
    QCOMPARE(answer->items[0].id, u"ana@example.com"_s);
    QCOMPARE(answer->items[0].summary, u"Ana"_s);
    QCOMPARE(answer->items[0].primary, true);
    QCOMPARE(answer->items[0].backgroundColor, u"#4986e7"_s);
    QVERIFY(!answer->items[1].primary && !answer->items[1].backgroundColor);

    const auto faulty = decodeCalendarList(R"({"items": [{"id": "1", "summary": "x"}, {"id": "2"}]})"_ba);
    QCOMPARE(faulty.error().description, u"items[1].summary: is missing"_s);
}

void TestCalendarDecoder::readsDateTimes_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("utc"); // empty: not a date-time
    QTest::newRow("fraction and offset")
        << "2025-03-01T09:30:00.250+01:00"_ba << u"2025-03-01T08:30:00.250Z"_s;
    QTest::newRow("a long fraction") << "2025-03-01T09:30:00." + QByteArray(200, '9') + "Z"
                                     << u"2025-03-01T09:30:00.999Z"_s;
    QTest::newRow("bare date") << "2025-03-01"_ba << QString();
    QTest::newRow("digits of another script") << "２025-03-01T09:30:00Z"_ba << QString();
    QTest::newRow("long") << QByteArray(100'000, '1') << QString();
}

void TestCalendarDecoder::readsDateTimes()
{
    QFETCH(const QByteArray, text);
    QFETCH(const QString, utc);
    const auto answer =
        decodeEventsList(eventsList(R"({"id": "1", "start": {"dateTime": ")" + text + R"("}})"));
    if (utc.isEmpty()) {
        QVERIFY(!answer);
        QCOMPARE(answer.error().description,
                 u"items[1].start.dateTime: Unparseable date: "_s + QString::fromUtf8(text));
    } else {
        QVERIFY(answer);
        QCOMPARE(toInternetDateTimeWithMilliseconds(answer->items.last().start->dateTime.value()), utc);
    }
}

void TestCalendarDecoder::namesThePlaceOfAFault_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("fault");
    const auto whole = [](const char *json, const QString &fault) {
        QTest::newRow(json) << QByteArray(json) << fault;
    };
    whole("[]", u"the answer: expected an object"_s);
    whole(R"({"Items": []})", u"items: is missing"_s);
    whole(R"({"items": null})", u"items: expected a list"_s);
    whole(R"({"items": [null]})", u"items[0]: expected an object"_s);
    whole(R"({"items": [], "nextPageToken": 7})", u"nextPageToken: expected a text"_s);

    const auto event = [](const QByteArray &members, const QString &fault) {
        QTest::newRow(members.constData())
            << eventsList(R"({"id": "1", )" + members + '}') << u"items[1]."_s + fault;
    };
    QTest::newRow("no identifier") << eventsList("{}") << u"items[1].id: is missing"_s;
    for (const char *name : { "status", "summary", "description", "location", "htmlLink", "hangoutLink" })
        event('"' + QByteArray(name) + "\": 1", QString::fromLatin1(name) + u": expected a text"_s);
    event(R"("start": "2025-03-01T09:30:00Z")", u"start: expected an object"_s);
    event(R"("start": {"dateTime": 1740821400})", u"start.dateTime: expected a text"_s);
    event(R"("end": {"date": 20250301})", u"end.date: expected a text"_s);
    event(R"("attendees": {})", u"attendees: expected a list"_s);
    event(R"("attendees": [{}, "ana"])", u"attendees[1]: expected an object"_s);
    event(R"("attendees": [{"self": 1}])", u"attendees[0].self: expected true or false"_s);
    event(R"("organizer": {"displayName": 1})", u"organizer.displayName: expected a text"_s);
    event(R"("conferenceData": {"entryPoints": [{"uri": 1}]})",
          u"conferenceData.entryPoints[0].uri: expected a text"_s);
    event(R"("conferenceData": {"conferenceSolution": {"iconUri": 1}})",
          u"conferenceData.conferenceSolution.iconUri: expected a text"_s);
    // a key that is there twice counts twice
    event(R"("summary": 1, "summary": "x")", u"summary: expected a text"_s);
}

void TestCalendarDecoder::namesThePlaceOfAFault()
{
    QFETCH(const QByteArray, json);
    const auto answer = decodeEventsList(json);
    QVERIFY(!answer);
    QTEST(answer.error().description, "fault");
}

void TestCalendarDecoder::refusesWhatIsNoJson_data()
{
    QTest::addColumn<QByteArray>("json");
    const QByteArray good = eventsList(R"({"id": "1", "unknown": {"a": [1, 2.5, "x"]}, "summary": "Año"})");
    QVERIFY(decodeEventsList(good));
    QTest::newRow("empty") << ""_ba;
    QTest::newRow("a web page") << "<!DOCTYPE html><html></html>"_ba;
    for (qsizetype size = 1; size < good.size(); ++size)
        QTest::addRow("cut off after %lld bytes", static_cast<long long>(size)) << good.first(size);
    QTest::newRow("more behind it") << good + "{}";
    QTest::newRow("a number that is none in an unknown key") << R"({"items": [], "unknown": 01})"_ba;
    QTest::newRow("invalid UTF-8 in an unknown key") << eventsList("{\"id\": \"1\", \"x\": \"\xff\"}");
    QTest::newRow("an encoded surrogate") << eventsList("{\"id\": \"\xed\xa0\x80\"}");
    QTest::newRow("escaped high surrogate alone") << eventsList(R"({"id": "\ud800"})");
    QTest::newRow("line break in a text") << eventsList("{\"id\": \"a\nb\"}");
    QTest::newRow("open brackets") << QByteArray(1'000'000, '[');
    QTest::newRow("deep in an unknown key")
        << R"({"items": [], "x": )" + QByteArray(100'000, '[') + QByteArray(100'000, ']') + "}";
}

void TestCalendarDecoder::refusesWhatIsNoJson()
{
    QFETCH(const QByteArray, json);
    // a buffer of its own without a byte behind it, so that the address sanitizer sees a step too far
    const std::vector<char> exact(json.begin(), json.end());
    const auto answer = decodeEventsList(QByteArrayView(exact.data(), static_cast<qsizetype>(exact.size())));
    QVERIFY(!answer);
    QVERIFY2(answer.error().description.startsWith(u"not JSON: "), qPrintable(answer.error().description));
}

void TestCalendarDecoder::worksOnAfterAHugeAnswer()
{
    for (const qsizetype size : { 5, 20'000'000, 5 }) {
        const auto answer =
            decodeEventsList(eventsList(R"({"id": "1", "summary": ")" + QByteArray(size, 'x') + R"("})"));
        QVERIFY(answer);
        QCOMPARE(answer->items.last().summary->size(), size);
    }
}

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestCalendarDecoder)
#include "TestCalendarDecoder.moc"
