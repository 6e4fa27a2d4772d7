#include "streamdeck/HandshakeHead.h"
#include <QList>
#include <algorithm>

namespace kestrel {

namespace {

/// Whether the head names an Origin, empty or not.
bool hasOrigin(const QByteArray &head)
{
    // tolerant in what a line end and a name are, so that no other reader finds one that this does not
    QByteArray lines = head;
    const auto all = lines.replace('\r', '\n').split('\n');
    return std::ranges::any_of(all, [](const QByteArray &line) {
        const qsizetype colon = line.indexOf(':');
        return colon >= 0 && line.first(colon).trimmed().compare("origin", Qt::CaseInsensitive) == 0;
    });
}

} // namespace

HandshakeVerdict judgeHandshake(const QByteArray &head)
{
    if (hasOrigin(head))
        return HandshakeVerdict::HasOrigin;
    const qsizetype end = head.indexOf("\r\n\r\n");
    if (end < 0)
        return head.size() > longestHandshakeHead ? HandshakeVerdict::TooLong : HandshakeVerdict::Incomplete;
    return end + 4 == head.size() ? HandshakeVerdict::Complete : HandshakeVerdict::Impatient;
}

} // namespace kestrel
