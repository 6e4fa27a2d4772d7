#pragma once
#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>
#include <QUrlQuery>
#include <expected>
#include <optional>
#include <utility>

namespace kestrel::demo {

/// One HTTP/1.1 request as it came in, whole.
struct ReceivedRequest
{
    QByteArray method;
    QUrl target; ///< path and query
    QList<std::pair<QByteArray, QByteArray>> headers; ///< names in lower case
    QByteArray body;
    qint64 connection = 0; ///< counts the server's connections from 1

    /// Percent-decoded.
    [[nodiscard]] QString path() const { return target.path(QUrl::FullyDecoded); }
    [[nodiscard]] QUrlQuery query() const;
    /// The body as application/x-www-form-urlencoded.
    [[nodiscard]] QUrlQuery form() const;
    /// The first header of that (lower-case) name.
    [[nodiscard]] std::optional<QByteArray> header(const QByteArray &name) const;
    [[nodiscard]] bool keepsAlive() const;
};

/// An item's value with its percent-encoding gone; empty when there is none.
[[nodiscard]] QString valueOf(const QUrlQuery &items, const QString &name);

inline constexpr qsizetype largestHead = 65'536;
inline constexpr qsizetype largestBody = 1'048'576;

/// Takes the first request off `buffer`: nothing while it is not there in full, and the status to refuse it
/// with when it never will be (too large, not HTTP/1.1, a body without a length).
[[nodiscard]] std::expected<std::optional<ReceivedRequest>, int> takeRequest(QByteArray &buffer);

} // namespace kestrel::demo
