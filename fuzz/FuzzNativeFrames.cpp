// A stream of frames, as browsers and clients of the relay send them, cut into pieces of the length that the
// last byte says: the pieces do not matter.
#include "Require.h"
#include "helper/relay/Frames.h"
#include "helper/relay/Json.h"
#include <QJsonArray>
#include <QJsonDocument>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <vector>

using namespace kestrel;
using namespace kestrel::relay;

namespace {

struct Read
{
    std::vector<std::string> messages;
    bool isSound = true;

    friend bool operator==(const Read &, const Read &) = default;
};

Read readIn(std::string_view stream, size_t piece, Framing framing, FrameReader::Excess excess)
{
    Read read;
    FrameReader reader(framing, excess);
    while (!stream.empty() && read.isSound) {
        read.isSound = reader.feed(stream.substr(0, piece), [&](std::string_view message) {
            require(!message.empty() && message.size() <= largestMessage);
            read.messages.emplace_back(message);
        });
        stream.remove_prefix(std::min(piece, stream.size()));
    }
    return read;
}

void checkStream(const std::string &stream, size_t piece)
{
    for (const Framing framing : { Framing::Length, Framing::Zero }) {
        const Read whole = readIn(stream, stream.size(), framing, FrameReader::Excess::Skip);
        require(whole.isSound);
        require(readIn(stream, piece, framing, FrameReader::Excess::Skip) == whole);
        const Read strict = readIn(stream, stream.size(), framing, FrameReader::Excess::Refuse);
        require(readIn(stream, piece, framing, FrameReader::Excess::Refuse) == strict);
        require(!strict.isSound || strict == whole);
        // passed on, they are the same messages
        std::string passedOn;
        for (const std::string &message : whole.messages)
            passedOn += framed(message, framing);
        require(readIn(passedOn, piece, framing, FrameReader::Excess::Refuse) == whole);
    }
}

void checkText(const std::string &text)
{
    const std::string json = "[" + jsonText(text) + "]";
    const auto array = QJsonDocument::fromJson(QByteArray::fromStdString(json)).array();
    require(array.size() == 1 && array.first().isString());
    const QString asText = QString::fromUtf8(text);
    if (asText.toStdString() == text)
        require(array.first().toString() == asText);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    FuzzedDataProvider input(bytes, size);
    const size_t piece = size_t(1) + input.ConsumeIntegral<uint8_t>();
    const std::string stream = input.ConsumeRemainingBytesAsString();
    checkStream(stream, piece);
    checkText(stream);
    return 0;
}
