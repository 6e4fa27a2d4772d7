#pragma once
#include <QByteArray>
#include <QString>
#include <QStringDecoder>
#include <optional>

namespace kestrel {

/// The text that `bytes` are, a byte order mark included; nothing when they are not UTF-8.
[[nodiscard]] inline std::optional<QString> fromStrictUtf8(const QByteArray &bytes)
{
    using Flag = QStringDecoder::Flag;
    QStringDecoder decoder(QStringDecoder::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(std::move(text));
}

} // namespace kestrel
