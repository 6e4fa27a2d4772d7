#include "streamdeck/MaskCheck.h"
#include <algorithm>

namespace kestrel {

namespace {

constexpr qsizetype maskSize = 4;

/// How many bytes hold the length behind the seven bits of the second byte.
qsizetype lengthSize(quint8 second)
{
    const int length = second & 0x7f;
    return length == 127 ? 8 : length == 126 ? 2 : 0;
}

} // namespace

bool MaskCheck::take(QByteArrayView bytes)
{
    while (m_isMasked && !bytes.isEmpty()) {
        if (m_payloadLeft > 0) {
            const auto passed = std::min(m_payloadLeft, quint64(bytes.size()));
            m_payloadLeft -= passed;
            bytes = bytes.sliced(qsizetype(passed));
            continue;
        }
        m_header.append(quint8(bytes.front()));
        bytes = bytes.sliced(1);
        if (m_header.size() < 2)
            continue;
        m_isMasked = m_header[1] & 0x80;
        if (m_header.size() == 2 + lengthSize(m_header[1]) + maskSize)
            beginPayload();
    }
    return m_isMasked;
}

void MaskCheck::beginPayload()
{
    m_payloadLeft = lengthSize(m_header[1]) == 0 ? m_header[1] & 0x7f : 0;
    for (qsizetype i = 0; i < lengthSize(m_header[1]); ++i)
        m_payloadLeft = m_payloadLeft << 8 | m_header[2 + i];
    m_header.clear();
}

} // namespace kestrel
