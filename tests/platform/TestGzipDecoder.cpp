#include "platform/Gzip.h"
#include "platform/linux/GzipDecoder.h"
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

class TestGzipDecoder final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unpacksStreamsHoweverTheyArrive_data()
    {
        QTest::addColumn<QByteArray>("packed");
        QTest::addColumn<QByteArray>("body");
        // more than one buffer, so that the last input goes in before the last output came out
        const QByteArray large = QByteArray(300'000, 'a') + "end";
        QTest::newRow("nothing") << gzipped({}) << QByteArray();
        QTest::newRow("much") << gzipped(large) << large;
        QTest::newRow("two streams") << gzipped("one ") + gzipped("two") << "one two"_ba;
    }

    void unpacksStreamsHoweverTheyArrive()
    {
        QFETCH(QByteArray, packed);
        QFETCH(QByteArray, body);
        for (const qsizetype size : { 1, 7, 1 << 20 }) {
            GzipDecoder decoder;
            QByteArray unpacked;
            for (qsizetype at = 0; at < packed.size(); at += size)
                QCOMPARE(decoder.unpack(packed.mid(at, size), unpacked, 1 << 20),
                         GzipDecoder::Outcome::Unpacked);
            QVERIFY(decoder.isComplete());
            QVERIFY(unpacked == body);
        }
    }

    void seesWhatIsNotWhole()
    {
        const QByteArray packed = gzipped("half an answer");
        for (qsizetype size = 1; size < packed.size(); ++size) {
            GzipDecoder decoder;
            QByteArray unpacked;
            QCOMPARE(decoder.unpack(packed.first(size), unpacked, 1 << 20), GzipDecoder::Outcome::Unpacked);
            QVERIFY2(!decoder.isComplete(), QByteArray::number(size));
        }
    }

    void refusesWhatIsBrokenOrTooLarge_data()
    {
        QTest::addColumn<QByteArray>("packed");
        QTest::addColumn<GzipDecoder::Outcome>("outcome");
        using Outcome = GzipDecoder::Outcome;
        QTest::newRow("plain text") << "{\"items\": []}"_ba << Outcome::Broken;
        QTest::newRow("wrong checksum")
            << gzipped("text").replace(gzipped("text").size() - 8, 4, "\1\2\3\4") << Outcome::Broken;
        QTest::newRow("text behind it") << gzipped("text") + "and more text" << Outcome::Broken;
        QTest::newRow("just fits") << gzipped(QByteArray(1'000'000, '0')) << Outcome::Unpacked;
        QTest::newRow("a byte too much") << gzipped(QByteArray(1'000'001, '0')) << Outcome::TooLarge;
        QTest::newRow("a thousandfold") << gzipped(QByteArray(64 << 20, '0')) << Outcome::TooLarge;
    }

    void refusesWhatIsBrokenOrTooLarge()
    {
        QFETCH(QByteArray, packed);
        GzipDecoder decoder;
        QByteArray unpacked;

        QTEST(decoder.unpack(packed, unpacked, 1'000'000), "outcome");
        QVERIFY2(unpacked.size() < 1'100'000, QByteArray::number(unpacked.size()));
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestGzipDecoder)
#include "TestGzipDecoder.moc"
