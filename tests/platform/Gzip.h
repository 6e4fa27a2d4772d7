#pragma once
#include <QByteArray>
#include <QtEndian>
#include <array>

namespace kestrel {

/// `body` as one gzip stream (RFC 1952), made from Qt's zlib stream: another frame around the same packing.
inline QByteArray gzipped(const QByteArray &body)
{
    static const auto table = [] {
        std::array<quint32, 256> made {};
        for (quint32 i = 0; i < made.size(); ++i) {
            quint32 value = i;
            for (int bit = 0; bit < 8; ++bit)
                value = (value >> 1) ^ ((value & 1) ? 0xEDB88320U : 0U);
            made[i] = value;
        }
        return made;
    }();
    quint32 crc = ~0U;
    for (const char c : body)
        crc = (crc >> 8) ^ table[(crc ^ static_cast<quint8>(c)) & 0xFF];
    const std::array<quint32, 2> trailer { qToLittleEndian(~crc),
                                           qToLittleEndian(static_cast<quint32>(body.size())) };

    constexpr qsizetype qtAndZlibHead = 6;
    constexpr qsizetype zlibChecksum = 4;
    const QByteArray zlib = body.isEmpty() ? QByteArray("......\x03\x00....", 12) : qCompress(body, 1);
    return QByteArray("\x1f\x8b\x08\0\0\0\0\0\0\xff", 10) + zlib.mid(qtAndZlibHead).chopped(zlibChecksum)
        + QByteArray(reinterpret_cast<const char *>(trailer.data()), sizeof trailer);
}

} // namespace kestrel
