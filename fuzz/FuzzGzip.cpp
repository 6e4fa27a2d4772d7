// Any bytes as a packed answer, at once and in pieces of the length that the last byte says.
#include "Require.h"
#include "platform/Gzip.h"
#include "platform/linux/GzipDecoder.h"
#include <algorithm>
#include <fuzzer/FuzzedDataProvider.h>

using namespace kestrel;

namespace {

constexpr qsizetype limit = 100'000;

struct Unpacked
{
    GzipDecoder::Outcome outcome = GzipDecoder::Outcome::Unpacked;
    bool isComplete = false;
    QByteArray body;
};

Unpacked unpackedIn(QByteArrayView packed, qsizetype piece)
{
    Unpacked unpacked;
    GzipDecoder decoder;
    for (; !packed.isEmpty() && unpacked.outcome == GzipDecoder::Outcome::Unpacked;
         packed = packed.sliced(std::min(piece, packed.size())))
        unpacked.outcome = decoder.unpack(packed.first(std::min(piece, packed.size())), unpacked.body, limit);
    unpacked.isComplete = decoder.isComplete();
    require(unpacked.body.size() <= limit + 65'536);
    return unpacked;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    FuzzedDataProvider input(bytes, size);
    const qsizetype piece = qsizetype(1) + input.ConsumeIntegral<uint8_t>();
    const QByteArray packed = QByteArray::fromStdString(input.ConsumeRemainingBytesAsString());
    const auto whole = unpackedIn(packed, std::max<qsizetype>(packed.size(), 1));
    const auto cut = unpackedIn(packed, piece);
    // what is broken as well as too large may be called either
    using Outcome = GzipDecoder::Outcome;
    require((cut.outcome == Outcome::Unpacked) == (whole.outcome == Outcome::Unpacked));
    if (whole.outcome == Outcome::Unpacked)
        require(cut.body == whole.body && cut.isComplete == whole.isComplete);
    // and as what is packed, in two streams
    const QByteArray known = gzipped(packed);
    const auto both = unpackedIn(known + known, piece);
    require(both.outcome == Outcome::Unpacked && both.isComplete && both.body == packed + packed);
    return 0;
}
