#pragma once
#include <QByteArrayView>
#include <QVarLengthArray>

namespace kestrel {

/// Follows the frame headers in what a WebSocket client sends, since Qt 6.4 takes frames without a mask and a
/// server must not (RFC 6455, 5.1). It judges nothing else.
class MaskCheck
{
public:
    /// The next bytes of the stream, cut anywhere. False from the first frame without a mask on.
    [[nodiscard]] bool take(QByteArrayView bytes);

private:
    void beginPayload();

    QVarLengthArray<quint8, 14> m_header;
    quint64 m_payloadLeft = 0;
    bool m_isMasked = true;
};

} // namespace kestrel
