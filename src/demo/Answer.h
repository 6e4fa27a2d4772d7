#pragma once
#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <chrono>
#include <utility>

namespace kestrel::demo {

/// What goes back for one request, and how: most answers go out whole and at once, the others are faults.
struct Answer
{
    enum class Delivery {
        Whole,
        Half, ///< the head promises all of the body; half of it follows, then the connection closes
        ByteByByte,
        Nothing, ///< the connection closes without a word
    };

    int status = 200;
    QByteArray contentType;
    QByteArray body;
    QList<std::pair<QByteArray, QByteArray>> headers {};
    Delivery delivery = Delivery::Whole;
    std::chrono::milliseconds delay { 0 }; ///< before the first byte
    std::chrono::milliseconds byteInterval { 0 }; ///< of ByteByByte

    [[nodiscard]] static Answer json(const QJsonObject &object, int status = 200);
    [[nodiscard]] static Answer jsonText(QByteArray text);
    [[nodiscard]] static Answer html(QByteArray text, int status = 200);
    [[nodiscard]] static Answer redirect(const QByteArray &location);
    /// As the Calendar API writes its errors; `status` chooses the error's name where Google has one.
    [[nodiscard]] static Answer apiError(int status, const QString &message, const QString &reason);
    /// As the OAuth endpoints write theirs (RFC 6749, section 5.2).
    [[nodiscard]] static Answer oauthError(int status, const QString &error, const QString &description);

    /// The head's bytes, up to and with the empty line.
    [[nodiscard]] QByteArray head(bool keepsAlive) const;
};

} // namespace kestrel::demo
