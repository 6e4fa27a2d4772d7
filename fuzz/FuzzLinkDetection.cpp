// Looks for a link in any text: the first half of the bytes is the description, the second the location. Odd
// sizes are read as UTF-16, so that lone surrogates come up too.
#include "Require.h"
#include "model/MeetingLinkDetector.h"
#include <cstring>

using namespace kestrel;

namespace {

QString textOf(const uint8_t *bytes, size_t size, bool isUtf16)
{
    if (!isUtf16)
        return QString::fromUtf8(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    QString text(static_cast<qsizetype>(size / 2), Qt::Uninitialized);
    if (!text.isEmpty())
        std::memcpy(text.data(), bytes, size / 2 * 2);
    return text;
}

/// Work that grows faster than the text would run into the time limit of an input.
void checkRepeated(const QString &text)
{
    constexpr qsizetype length = 200'000;
    const QString many = text.repeated(length / text.size()).left(length);
    require(decodeHTMLEntities(many).size() <= many.size());
    static_cast<void>(MeetingLinkDetector().resolve({}, {}, many, many));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const bool isUtf16 = size % 2 != 0;
    const QString description = textOf(bytes, size / 2, isUtf16);
    const QString location = textOf(bytes + size / 2, size - size / 2, isUtf16);

    require(decodeHTMLEntities(description).size() <= description.size());
    const auto conference = safeURL(location);
    require(!conference || conference->scheme() == u"https");
    for (const auto &structured : { std::optional<QUrl>(), conference }) {
        const auto found = MeetingLinkDetector().resolve(structured, {}, description, location);
        if (!found)
            continue;
        require(found->url.isValid() && found->url.scheme() == u"https" && !found->url.host().isEmpty());
        require(found->platform.kind() != MeetingPlatform::Kind::InPerson);
        // a link says the same of its platform when it is found again by itself
        require(classifyPlatform(found->url) == found->platform);
    }
    // a fraction of all inputs, since it takes a thousand times as long as the rest
    if (size > 0 && size % 64 == 0)
        checkRepeated(description + u' ' + location);
    return 0;
}
