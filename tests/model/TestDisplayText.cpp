#include "model/DisplayText.h"
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

class TestDisplayText final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void stripsWhatCannotBeSeen_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("visible");
        QTest::newRow("nothing to strip") << u"Año – 会議 🎉"_s << u"Año – 会議 🎉"_s;
        QTest::newRow("tab stays, line break goes") << u"a\tb\nc\rd"_s << u"a\tbcd"_s;
        QTest::newRow("delete is above the space") << u"a\u007fb"_s << u"a\u007fb"_s;
        QTest::newRow("joined emoji comes apart") << u"👩\u200d💻"_s << u"👩💻"_s;
        QTest::newRow("tag characters beyond the BMP") << u"🏴\U000E0067\U000E007F!"_s << u"🏴!"_s;
        QTest::newRow("lone high surrogate")
            << u"a\u200b"_s + QChar(0xD83D) + u"b"_s << u"a"_s + QChar(0xD83D) + u"b"_s;
        QTest::newRow("swapped pair")
            << QString(QChar(0xDC67)) + QChar(0xDB40) << QString(QChar(0xDC67)) + QChar(0xDB40);
    }

    void stripsWhatCannotBeSeen()
    {
        QFETCH(const QString, text);
        QTEST(stripInvisibles(text), "visible");
    }

    void knowsEveryDefaultIgnorable()
    {
        QString all;
        for (char32_t c = 0x20; c <= QChar::LastValidCodePoint; ++c) {
            if (!QChar::isSurrogate(c))
                all += QChar::fromUcs4(c);
        }
        const QString visible = stripInvisibles(all);
        const QRegularExpression defaultIgnorable(u"\\p{Default_Ignorable_Code_Point}"_s);
        QVERIFY(defaultIgnorable.isValid());
        QVERIFY(visible == all.remove(defaultIgnorable));
        QVERIFY(visible.size() > 2'000'000);
    }

    void cutsBetweenUserPerceivedCharacters_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qsizetype>("units");
        const QString family = u"👨\u200d👩\u200d👧\u200d👦"_s;
        QTest::newRow("one too many") << u"123456"_s << qsizetype(5);
        QTest::newRow("accents count with their letter") << u"e\u0301"_s.repeated(6) << qsizetype(10);
        QTest::newRow("the sixth does not") << family.repeated(6) << family.size() * 5;
        QTest::newRow("flags are pairs") << u"🇪🇸"_s.repeated(6) << qsizetype(20);
        // more than the window that the boundaries are first looked for in
        QTest::newRow("one cluster of ten thousand marks")
            << u"1234"_s + u"e"_s + u"\u0301"_s.repeated(10'000) + u"6"_s << qsizetype(10'005);
        QTest::newRow("lone surrogates") << QString(9, QChar(0xD800)) << qsizetype(5);
    }

    void cutsBetweenUserPerceivedCharacters()
    {
        QFETCH(const QString, text);
        QFETCH(const qsizetype, units);
        QCOMPARE(firstCharacters(text, 5), text.left(units));
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestDisplayText)
#include "TestDisplayText.moc"
