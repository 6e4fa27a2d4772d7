#include "platform/linux/IniText.h"
#include "support/Files.h"
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <limits>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const QStringList awkwardTexts {
    u""_s,
    u"5"_s,
    u"true"_s,
    u"a, b"_s,
    u" spaces around "_s,
    u"semi;colon ; and # hash"_s,
    u"\"quoted\""_s,
    u"back\\slash\\"_s,
    u"two\nlines\r\n\ttab"_s,
    u"[General]"_s,
    u"key=value"_s,
    u"@at"_s,
    u"@@twice"_s,
    u"@ByteArray(no)"_s,
    u"@Invalid()"_s,
    u"ünïcode 📅 \u2028"_s,
    u"\x01"
    u"c1 \x7f"_s,
    u"{\"keyCode\":46,\"modifiers\":2560}"_s,
};

const QByteArray awkwardBytes("{\"a\":[1]} \x00\x01\x7f\x80\xff"
                              "f;,=\"\\\n)",
                              24);

} // namespace

class TestIniText final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWhatPeopleWrite_data()
    {
        QTest::addColumn<QByteArray>("written");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("integer") << QByteArray("k=5") << QVariant(5LL);
        QTest::newRow("integer with spaces and a comment") << QByteArray(" k = -5 ; five") << QVariant(-5LL);
        QTest::newRow("text, unquoted") << QByteArray("k=topLeft") << QVariant(u"topLeft"_s);
        QTest::newRow("text with a comment") << QByteArray("k=a;b ;c") << QVariant(u"a;b"_s);
        QTest::newRow("JSON without quotes around it")
            << QByteArray("k={\"a x\":[\"b, c;d ; e\",\"f\\\"g\"]} ; mine")
            << QVariant(u"{\"a x\":[\"b, c;d ; e\",\"f\\\"g\"]}"_s);
        QTest::newRow("list of one") << QByteArray("k=es") << QVariant(QStringList { u"es"_s });
        QTest::newRow("list, partly quoted")
            << QByteArray("k=\"a, b\",c") << QVariant(QStringList { u"a, b"_s, u"c"_s });
        QTest::newRow("bytes") << QByteArray("k=@ByteArray({\\\"a\\\":1})")
                               << QVariant(QByteArray("{\"a\":1}"));
        for (const char *word : { "true", "Yes", "on", "1" })
            QTest::newRow(word) << "k=" + QByteArray(word) << QVariant(true);
        for (const char *word : { "FALSE", "no", "off", "0" })
            QTest::newRow(word) << "k=" + QByteArray(word) << QVariant(false);
        QTest::newRow("last of two") << QByteArray("k=1\nk=2") << QVariant(2LL);
        QTest::newRow("Windows line ends") << QByteArray("[General]\r\nk=2\r\nl=3\r\n") << QVariant(2LL);
        QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbfk=2") << QVariant(2LL);
    }

    void readsWhatPeopleWrite()
    {
        QFETCH(QByteArray, written);
        QFETCH(QVariant, expected);
        const IniText text(written);
        QVERIFY(!text.isDamaged());
        QCOMPARE(text.text(), written);
        switch (expected.typeId()) {
        case QMetaType::LongLong:
            QCOMPARE(text.integer(u"k"_s), expected.toLongLong());
            break;
        case QMetaType::Bool:
            QCOMPARE(text.boolean(u"k"_s), expected.toBool());
            break;
        case QMetaType::QStringList:
            QCOMPARE(text.stringList(u"k"_s), expected.toStringList());
            break;
        case QMetaType::QByteArray:
            QCOMPARE(text.data(u"k"_s), expected.toByteArray());
            break;
        default:
            QCOMPARE(text.string(u"k"_s), expected.toString());
        }
    }

    void aValueOfAnotherTypeReadsAsAbsent_data()
    {
        QTest::addColumn<QByteArray>("written");
        QTest::addColumn<QStringList>("readable");
        QTest::newRow("in another section") << QByteArray("[Other]\nk=1") << QStringList();
        QTest::newRow("quoted text") << QByteArray("k=\"5\"") << QStringList { u"string"_s, u"list"_s };
        QTest::newRow("too large") << QByteArray("k=9223372036854775808")
                                   << QStringList { u"string"_s, u"list"_s };
        QTest::newRow("fraction") << QByteArray("k=1.5") << QStringList { u"string"_s, u"list"_s };
        QTest::newRow("grouped digits") << QByteArray("k=1,000") << QStringList { u"string"_s, u"list"_s };
        QTest::newRow("quoted list") << QByteArray("k=\"a\", \"b\"") << QStringList { u"list"_s };
        QTest::newRow("bytes") << QByteArray("k=@ByteArray(5)") << QStringList { u"data"_s };
        QTest::newRow("QSettings' nothing") << QByteArray("k=@Invalid()") << QStringList { u"list"_s };
    }

    void aValueOfAnotherTypeReadsAsAbsent()
    {
        QFETCH(QByteArray, written);
        const IniText text(written);
        QStringList readable;
        if (text.integer(u"k"_s))
            readable.append(u"integer"_s);
        if (text.boolean(u"k"_s))
            readable.append(u"boolean"_s);
        if (text.string(u"k"_s))
            readable.append(u"string"_s);
        if (text.stringList(u"k"_s))
            readable.append(u"list"_s);
        if (text.data(u"k"_s))
            readable.append(u"data"_s);
        QTEST(readable, "readable");
    }

    void qSettingsAndWeReadEachOther()
    {
        IniText written;
        const QTemporaryDir folder;
        QSettings theirs(folder.filePath(u"theirs.ini"_s), QSettings::IniFormat);
        for (const QStringList &list : { awkwardTexts, QStringList { u"es"_s }, QStringList() }) {
            const QString key = u"list%1"_s.arg(list.size());
            written.setStringList(key, list);
            theirs.setValue(key, list);
        }
        for (int i = 0; i < awkwardTexts.size(); ++i) {
            written.setString(u"text%1"_s.arg(i), awkwardTexts[i]);
            theirs.setValue(u"text%1"_s.arg(i), awkwardTexts[i]);
        }
        written.setData(u"bytes"_s, awkwardBytes);
        theirs.setValue("bytes"_L1, awkwardBytes);
        theirs.sync();

        for (const QByteArray &text : { written.text(), contentOf(theirs.fileName()) }) {
            const IniText read(text);
            QVERIFY(!read.isDamaged());
            for (int i = 0; i < awkwardTexts.size(); ++i)
                QCOMPARE(read.string(u"text%1"_s.arg(i)), awkwardTexts[i]);
            QCOMPARE(read.stringList(u"list0"_s), QStringList());
            QCOMPARE(read.stringList(u"list1"_s), QStringList { u"es"_s });
            QCOMPARE(read.stringList(u"list%1"_s.arg(awkwardTexts.size())), awkwardTexts);
            QCOMPARE(read.data(u"bytes"_s), awkwardBytes);
        }

        writeFile(folder.filePath(u"ours.ini"_s), written.text());
        const QSettings settings(folder.filePath(u"ours.ini"_s), QSettings::IniFormat);
        for (int i = 0; i < awkwardTexts.size(); ++i)
            QCOMPARE(settings.value(u"text%1"_s.arg(i)), awkwardTexts[i]);
        QCOMPARE(settings.value(u"list%1"_s.arg(awkwardTexts.size())), awkwardTexts);
        QCOMPARE(settings.value("bytes"_L1), awkwardBytes);
    }

    void settingAValueLeavesEveryOtherLineAlone_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("after");
        QTest::newRow("no file") << QByteArray() << QByteArray("[General]\nk=7\n");
        QTest::newRow("replaces the line in its place")
            << QByteArray("; mine\n[General]\na = 1 ; one\nk = 5\n\n# later\nb=x, y\n[Window]\nk=5\n")
            << QByteArray("; mine\n[General]\na = 1 ; one\nk=7\n\n# later\nb=x, y\n[Window]\nk=5\n");
        QTest::newRow("goes behind the last key") << QByteArray("[General]\na=1\n\n[Window]\nb=2\n")
                                                  << QByteArray("[General]\na=1\nk=7\n\n[Window]\nb=2\n");
        QTest::newRow("gets a section of its own")
            << QByteArray("# mine\n[Window]\nb=2\n") << QByteArray("# mine\n[Window]\nb=2\n[General]\nk=7\n");
        QTest::newRow("last line is not ended")
            << QByteArray("[General]\na=1") << QByteArray("[General]\na=1\nk=7\n");
        QTest::newRow("the last of two counts") << QByteArray("k=5\nk=6\n") << QByteArray("k=5\nk=7\n");
        QTest::newRow("the same value") << QByteArray("k = 7 ; seven") << QByteArray("k = 7 ; seven");
    }

    void settingAValueLeavesEveryOtherLineAlone()
    {
        QFETCH(QByteArray, before);
        IniText text(before);
        text.setInteger(u"k"_s, 7);
        QTEST(text.text(), "after");
        QCOMPARE(IniText(text.text()).integer(u"k"_s), 7);
    }

    void removingAKeyRemovesAllItsLines()
    {
        IniText text("[General]\nk=1\na=2\nk=3\n[Window]\nk=4\n");
        text.remove(u"k"_s);
        QCOMPARE(text.text(), "[General]\na=2\n[Window]\nk=4\n");
        QVERIFY(!text.integer(u"k"_s));
    }

    void damageCostsItsLineAlone()
    {
        for (const QByteArray &line :
             { "leadTimeMi"_ba, "======="_ba, "<<<<<<< mine"_ba, "b=\"hello"_ba, "b=\"hello\", \"you"_ba,
               "[Gene"_ba, "b=caf\xe9"_ba, QByteArray(50, '\0') }) {
            IniText text("[General]\na=1\n" + line + "\nc=3\n");
            QVERIFY2(text.isDamaged(), line);
            QCOMPARE(text.integer(u"a"_s), 1);
            QCOMPARE(text.integer(u"c"_s), 3);
            text.dropDamagedLines();
            QVERIFY(!text.isDamaged());
            QCOMPARE(text.text(), "[General]\na=1\nc=3\n");
        }
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestIniText)
#include "TestIniText.moc"
