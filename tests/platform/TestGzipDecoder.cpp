#include "platform/Gzip.h"
#include "platform/linux/GzipDecoder.h"
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

class TestGzipDecoder final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unpacksStreamsHoweverTheyArrive_data();
    void unpacksStreamsHoweverTheyArrive();
    void seesWhatIsNotWhole();
    void refusesWhatIsNoGzip_data();
    void refusesWhatIsNoGzip();
    void stopsAtTheLimit_data();
    void stopsAtTheLimit();
};

void TestGzipDecoder::unpacksStreamsHoweverTheyArrive_data()
{
    QTest::addColumn<QByteArray>("packed");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<qsizetype>("pieceSize");
    // more than one buffer, so that the last input goes in before the last output came out
    const QByteArray large = QByteArray(300'000, 'a') + "end";
    for (const qsizetype size : { 1, 7, 1 << 20 }) {
        const QByteArray inPieces = " in pieces of " + QByteArray::number(size);
        QTest::newRow("nothing" + inPieces) << gzipped({}) << QByteArray() << size;
        QTest::newRow("a text" + inPieces) << gzipped("{\"items\": []}") << "{\"items\": []}"_ba << size;
        QTest::newRow("much" + inPieces) << gzipped(large) << large << size;
        QTest::newRow("two streams" + inPieces) << gzipped("one ") + gzipped("two") << "one two"_ba << size;
    }
}

void TestGzipDecoder::unpacksStreamsHoweverTheyArrive()
{
    QFETCH(QByteArray, packed);
    QFETCH(QByteArray, body);
    QFETCH(qsizetype, pieceSize);
    GzipDecoder decoder;
    QByteArray unpacked;

    for (qsizetype at = 0; at < packed.size(); at += pieceSize)
        QCOMPARE(decoder.unpack(packed.mid(at, pieceSize), unpacked, 1 << 20),
                 GzipDecoder::Outcome::Unpacked);

    QVERIFY(decoder.isComplete());
    QVERIFY(unpacked == body);
}

void TestGzipDecoder::seesWhatIsNotWhole()
{
    const QByteArray packed = gzipped("half an answer");
    for (qsizetype size = 1; size < packed.size(); ++size) {
        GzipDecoder decoder;
        QByteArray unpacked;
        QCOMPARE(decoder.unpack(packed.first(size), unpacked, 1 << 20), GzipDecoder::Outcome::Unpacked);
        QVERIFY2(!decoder.isComplete(), QByteArray::number(size));
    }
}

void TestGzipDecoder::refusesWhatIsNoGzip_data()
{
    QTest::addColumn<QByteArray>("packed");
    QTest::newRow("plain text") << "{\"items\": []}"_ba;
    QTest::newRow("wrong checksum") << gzipped("text").replace(gzipped("text").size() - 8, 4, "\1\2\3\4");
    QTest::newRow("text behind it") << gzipped("text") + "and more text";
}

void TestGzipDecoder::refusesWhatIsNoGzip()
{
    QFETCH(QByteArray, packed);
    GzipDecoder decoder;
    QByteArray unpacked;

    QCOMPARE(decoder.unpack(packed, unpacked, 1 << 20), GzipDecoder::Outcome::Broken);
}

void TestGzipDecoder::stopsAtTheLimit_data()
{
    QTest::addColumn<qsizetype>("size");
    QTest::addColumn<bool>("fits");
    QTest::newRow("just fits") << qsizetype(1'000'000) << true;
    QTest::newRow("a byte too much") << qsizetype(1'000'001) << false;
    QTest::newRow("a thousandfold of the input") << qsizetype(64 << 20) << false;
}

void TestGzipDecoder::stopsAtTheLimit()
{
    QFETCH(qsizetype, size);
    QFETCH(bool, fits);
    GzipDecoder decoder;
    QByteArray unpacked;

    const auto outcome = decoder.unpack(gzipped(QByteArray(size, '0')), unpacked, 1'000'000);

    QCOMPARE(outcome, fits ? GzipDecoder::Outcome::Unpacked : GzipDecoder::Outcome::TooLarge);
    QVERIFY2(unpacked.size() < 1'100'000, QByteArray::number(unpacked.size()));
}

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestGzipDecoder)

#include "TestGzipDecoder.moc"
