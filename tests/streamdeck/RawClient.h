#pragma once
#include <QByteArray>
#include <QTcpSocket>
#include <QtEndian>

namespace kestrel::test {

enum Opcode : quint8 { Continuation = 0, Text = 1, Binary = 2, Close = 8, Ping = 9 };

struct FrameForm
{
    bool isFinal = true;
    bool isMasked = true;
    quint8 reserved = 0;
};

/// One WebSocket frame as its bytes (RFC 6455, 5.2), right or deliberately wrong.
inline QByteArray frame(quint8 opcode, QByteArray payload, FrameForm form = {})
{
    const auto size = payload.size();
    const quint8 masked = form.isMasked ? 0x80 : 0;
    QByteArray bytes(1, char((form.isFinal ? 0x80 : 0) | form.reserved | opcode));
    if (size < 126) {
        bytes.append(char(masked | size));
    } else if (size <= 0xffff) {
        bytes.append(char(masked | 126)).append(2, '\0');
        qToBigEndian(quint16(size), bytes.data() + 2);
    } else {
        bytes.append(char(masked | 127)).append(8, '\0');
        qToBigEndian(quint64(size), bytes.data() + 2);
    }
    if (form.isMasked) {
        const QByteArray mask = "\x11\x22\x33\x44";
        bytes.append(mask);
        for (qsizetype i = 0; i < size; ++i)
            payload[i] = char(payload[i] ^ mask[i % 4]);
    }
    return bytes + payload;
}

inline const QByteArray requestLines = "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\n"
                                       "Connection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
                                       "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n";

/// A client that says exactly what it is told to, and collects what it gets.
class RawClient
{
public:
    explicit RawClient(quint16 port)
    {
        QObject::connect(&socket, &QTcpSocket::readyRead, &socket, [this] { received += socket.readAll(); });
        socket.connectToHost(QStringLiteral("127.0.0.1"), port);
        // the kernel takes the connection; the bridge need not run for it
        socket.waitForConnected();
    }

    void send(const QByteArray &bytes)
    {
        socket.write(bytes);
        socket.flush();
    }

    [[nodiscard]] bool isClosed() const { return socket.state() == QAbstractSocket::UnconnectedState; }
    [[nodiscard]] bool isGreeted() const { return received.contains("\"hello\""); }

    QByteArray received;
    QTcpSocket socket;
};

} // namespace kestrel::test
