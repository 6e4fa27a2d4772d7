#include "platform/linux/IniText.h"
#include <QFile>
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
        QTest::newRow("smallest integer")
            << QByteArray("k=-9223372036854775808") << QVariant(std::numeric_limits<qint64>::min());
        QTest::newRow("text, unquoted") << QByteArray("k=topLeft") << QVariant(u"topLeft"_s);
        QTest::newRow("text with commas") << QByteArray("k=a, b") << QVariant(u"a, b"_s);
        QTest::newRow("text with a comment") << QByteArray("k=a;b ;c") << QVariant(u"a;b"_s);
        QTest::newRow("JSON without quotes around it")
            << QByteArray("k={\"a x\":[\"b, c;d ; e\",\"f\\\"g\"]} ; mine")
            << QVariant(u"{\"a x\":[\"b, c;d ; e\",\"f\\\"g\"]}"_s);
        QTest::newRow("empty text") << QByteArray("k=") << QVariant(u""_s);
        QTest::newRow("UTF-8") << QByteArray("k=\xc3\xbc") << QVariant(u"ü"_s);
        QTest::newRow("list") << QByteArray("k=es, en") << QVariant(QStringList { u"es"_s, u"en"_s });
        QTest::newRow("list of one") << QByteArray("k=es") << QVariant(QStringList { u"es"_s });
        QTest::newRow("list of none") << QByteArray("k=") << QVariant(QStringList());
        QTest::newRow("list, partly quoted")
            << QByteArray("k=\"a, b\",c") << QVariant(QStringList { u"a, b"_s, u"c"_s });
        QTest::newRow("bytes") << QByteArray("k=@ByteArray({\\\"a\\\":1})")
                               << QVariant(QByteArray("{\"a\":1}"));
        QTest::newRow("true") << QByteArray("k=true") << QVariant(true);
        QTest::newRow("Yes") << QByteArray("k=Yes") << QVariant(true);
        QTest::newRow("on") << QByteArray("k=on") << QVariant(true);
        QTest::newRow("1") << QByteArray("k=1") << QVariant(true);
        QTest::newRow("FALSE") << QByteArray("k=FALSE") << QVariant(false);
        QTest::newRow("no") << QByteArray("k=no") << QVariant(false);
        QTest::newRow("off") << QByteArray("k=off") << QVariant(false);
        QTest::newRow("0") << QByteArray("k=0") << QVariant(false);
        QTest::newRow("last of two") << QByteArray("k=1\nk=2") << QVariant(2LL);
        QTest::newRow("Windows line ends") << QByteArray("[General]\r\nk=2\r\nl=3\r\n") << QVariant(2LL);
        QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbfk=2") << QVariant(2LL);
        QTest::newRow("section in small letters")
            << QByteArray("[Other]\nk=1\n[general]\nk=2") << QVariant(2LL);
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
        QTest::newRow("absent") << QByteArray("l=1") << QStringList();
        QTest::newRow("in another section") << QByteArray("[Other]\nk=1") << QStringList();
        QTest::newRow("quoted text") << QByteArray("k=\"5\"") << QStringList { u"string"_s, u"list"_s };
        QTest::newRow("quoted word") << QByteArray("k=\"true\"") << QStringList { u"string"_s, u"list"_s };
        QTest::newRow("a word") << QByteArray("k=maybe") << QStringList { u"string"_s, u"list"_s };
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

    void everyValueComesBackAsItsOwnType()
    {
        IniText written;
        for (int i = 0; i < awkwardTexts.size(); ++i)
            written.setString(u"text%1"_s.arg(i), awkwardTexts[i]);
        written.setStringList(u"list"_s, awkwardTexts);
        written.setStringList(u"one"_s, { u"es"_s });
        written.setStringList(u"emptyOne"_s, { u""_s });
        written.setStringList(u"none"_s, {});
        written.setData(u"bytes"_s, awkwardBytes);
        written.setData(u"noBytes"_s, "");
        written.setInteger(u"integer"_s, std::numeric_limits<qint64>::min());
        written.setBoolean(u"boolean"_s, false);

        const IniText read(written.text());
        QVERIFY(!read.isDamaged());
        for (int i = 0; i < awkwardTexts.size(); ++i)
            QCOMPARE(read.string(u"text%1"_s.arg(i)), awkwardTexts[i]);
        QCOMPARE(read.stringList(u"list"_s), awkwardTexts);
        QCOMPARE(read.stringList(u"one"_s), QStringList { u"es"_s });
        QCOMPARE(read.stringList(u"emptyOne"_s), QStringList { u""_s });
        QCOMPARE(read.stringList(u"none"_s), QStringList());
        QCOMPARE(read.data(u"bytes"_s), awkwardBytes);
        QCOMPARE(read.data(u"noBytes"_s), "");
        QCOMPARE(read.integer(u"integer"_s), std::numeric_limits<qint64>::min());
        QCOMPARE(read.boolean(u"boolean"_s), false);
    }

    void qSettingsReadsWhatIsWritten()
    {
        IniText written;
        for (int i = 0; i < awkwardTexts.size(); ++i)
            written.setString(u"text%1"_s.arg(i), awkwardTexts[i]);
        written.setStringList(u"list"_s, { u"a, b"_s, u"c"_s });
        written.setData(u"bytes"_s, awkwardBytes);
        written.setInteger(u"integer"_s, -5);
        written.setBoolean(u"boolean"_s, true);
        const QTemporaryDir folder;
        QFile file(folder.filePath(u"x.ini"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(written.text());
        file.close();

        const QSettings settings(file.fileName(), QSettings::IniFormat);
        for (int i = 0; i < awkwardTexts.size(); ++i)
            QCOMPARE(settings.value(u"text%1"_s.arg(i)), awkwardTexts[i]);
        QCOMPARE(settings.value("list"_L1), (QStringList { u"a, b"_s, u"c"_s }));
        QCOMPARE(settings.value("bytes"_L1), awkwardBytes);
        QCOMPARE(settings.value("integer"_L1).toLongLong(), -5);
        QCOMPARE(settings.value("boolean"_L1).toBool(), true);
        QCOMPARE(settings.status(), QSettings::NoError);
    }

    void whatQSettingsWritesIsRead()
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath(u"x.ini"_s));
        {
            QSettings settings(file.fileName(), QSettings::IniFormat);
            for (int i = 0; i < awkwardTexts.size(); ++i)
                settings.setValue(u"text%1"_s.arg(i), awkwardTexts[i]);
            settings.setValue("list"_L1, awkwardTexts);
            settings.setValue("one"_L1, QStringList { u"es"_s });
            settings.setValue("none"_L1, QStringList());
            settings.setValue("bytes"_L1, awkwardBytes);
            settings.setValue("integer"_L1, -5);
            settings.setValue("boolean"_L1, true);
            settings.setValue("window/size"_L1, 7);
        }
        QVERIFY(file.open(QIODevice::ReadOnly));
        const IniText read(file.readAll());
        QVERIFY(!read.isDamaged());
        for (int i = 0; i < awkwardTexts.size(); ++i)
            QCOMPARE(read.string(u"text%1"_s.arg(i)), awkwardTexts[i]);
        QCOMPARE(read.stringList(u"list"_s), awkwardTexts);
        QCOMPARE(read.stringList(u"one"_s), QStringList { u"es"_s });
        QCOMPARE(read.stringList(u"none"_s), QStringList());
        QCOMPARE(read.data(u"bytes"_s), awkwardBytes);
        QCOMPARE(read.integer(u"integer"_s), -5);
        QCOMPARE(read.boolean(u"boolean"_s), true);
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
        QTest::newRow("goes into the empty section")
            << QByteArray("[General]\n[Window]\nb=2\n") << QByteArray("[General]\nk=7\n[Window]\nb=2\n");
        QTest::newRow("gets a section of its own")
            << QByteArray("# mine\n[Window]\nb=2\n") << QByteArray("# mine\n[Window]\nb=2\n[General]\nk=7\n");
        QTest::newRow("keys without a section") << QByteArray("a=1\n") << QByteArray("a=1\nk=7\n");
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

    void damageCostsItsLineAlone_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("no equals sign") << QByteArray("leadTimeMi");
        QTest::newRow("no key") << QByteArray("=======");
        QTest::newRow("conflict marker") << QByteArray("<<<<<<< mine");
        QTest::newRow("quote left open") << QByteArray("b=\"hello");
        QTest::newRow("second quote left open") << QByteArray("b=\"hello\", \"you");
        QTest::newRow("section left open") << QByteArray("[Gene");
        QTest::newRow("not UTF-8") << QByteArray("b=caf\xe9");
        QTest::newRow("zeros, as after a power cut") << QByteArray(50, '\0');
        QTest::newRow("binary") << QByteArray("\x7f"
                                              "ELF\x02\x01=\x01",
                                              8);
    }

    void damageCostsItsLineAlone()
    {
        QFETCH(QByteArray, line);
        IniText text("[General]\na=1\n" + line + "\nc=3\n");
        QVERIFY(text.isDamaged());
        QCOMPARE(text.integer(u"a"_s), 1);
        QCOMPARE(text.integer(u"c"_s), 3);
        text.dropDamagedLines();
        QVERIFY(!text.isDamaged());
        QCOMPARE(text.text(), "[General]\na=1\nc=3\n");
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestIniText)
#include "TestIniText.moc"
