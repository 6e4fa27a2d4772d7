#pragma once
#include <QByteArray>

namespace kestrel {

/// Of the head of a client's request, in bytes.
inline constexpr qsizetype longestHandshakeHead = 8192;

enum class HandshakeVerdict {
    Incomplete, ///< the head goes on
    Complete, ///< and nothing stands behind it
    HasOrigin, ///< a web page: its browser insists on naming it
    TooLong,
    Impatient, ///< a client waits for the answer before it sends anything (RFC 6455, 4.1)
};

/// Judges what a client has sent so far: all of it, or its first longestHandshakeHead + 1 bytes.
[[nodiscard]] HandshakeVerdict judgeHandshake(const QByteArray &head);

} // namespace kestrel
