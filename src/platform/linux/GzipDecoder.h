#pragma once
#include <QByteArray>
#include <QByteArrayView>
#include <memory>

typedef struct _GConverter GConverter; // GLib's name, NOLINT(bugprone-reserved-identifier)

namespace kestrel {

/// Unpacks a gzip stream (RFC 1952) as it arrives. Qt's network classes can unpack too, but go through the
/// bytes twice, and stop neither at a given size nor with an error that tells a large answer from a broken
/// one.
class GzipDecoder final
{
public:
    enum class Outcome { Unpacked, TooLarge, Broken };

    GzipDecoder();

    /// Appends what `packed` holds to `body`, and stops as soon as that is larger than `limit` bytes.
    [[nodiscard]] Outcome unpack(QByteArrayView packed, QByteArray &body, qsizetype limit);
    /// Whether all streams so far are whole.
    [[nodiscard]] bool isComplete() const { return m_isComplete; }

private:
    struct Unref
    {
        void operator()(GConverter *converter) const;
    };

    std::unique_ptr<GConverter, Unref> m_converter;
    bool m_isComplete = true;
};

} // namespace kestrel
