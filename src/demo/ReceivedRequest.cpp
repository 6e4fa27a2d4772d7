#include "demo/ReceivedRequest.h"

using namespace Qt::StringLiterals;

namespace kestrel::demo {

namespace {

/// Browsers write a space of a form or a query as "+"; QUrlQuery leaves that alone.
QUrlQuery itemsOf(QByteArray encoded)
{
    encoded.replace('+', "%20");
    return QUrlQuery(QString::fromUtf8(encoded));
}

} // namespace

QUrlQuery ReceivedRequest::query() const
{
    return itemsOf(target.query(QUrl::FullyEncoded).toUtf8());
}

QUrlQuery ReceivedRequest::form() const
{
    return itemsOf(body);
}

std::optional<QByteArray> ReceivedRequest::header(const QByteArray &name) const
{
    for (const auto &[key, value] : headers) {
        if (key == name)
            return value;
    }
    return {};
}

bool ReceivedRequest::keepsAlive() const
{
    return header("connection").value_or(QByteArray()).toLower() != "close";
}

QString valueOf(const QUrlQuery &items, const QString &name)
{
    return items.queryItemValue(name, QUrl::FullyDecoded);
}

std::expected<std::optional<ReceivedRequest>, int> takeRequest(QByteArray &buffer)
{
    const qsizetype headEnd = buffer.indexOf("\r\n\r\n");
    if (headEnd < 0 ? buffer.size() > largestHead : headEnd > largestHead)
        return std::unexpected(431);
    if (headEnd < 0)
        return std::nullopt;

    const QList<QByteArray> lines = buffer.first(headEnd).split('\n');
    const QList<QByteArray> words = lines.first().trimmed().split(' ');
    if (words.size() != 3 || !words[1].startsWith('/'))
        return std::unexpected(400);
    if (words[2] != "HTTP/1.1")
        return std::unexpected(505);

    ReceivedRequest request {
        .method = words[0], .target = QUrl::fromEncoded(words[1], QUrl::StrictMode), .headers = {}, .body = {}
    };
    if (!request.target.isValid())
        return std::unexpected(400);
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const qsizetype colon = lines[i].indexOf(':');
        if (colon <= 0)
            return std::unexpected(400);
        request.headers.emplaceBack(lines[i].first(colon).toLower(), lines[i].mid(colon + 1).trimmed());
    }

    if (request.header("transfer-encoding"))
        return std::unexpected(411);
    bool isNumber = true;
    const qlonglong length = request.header("content-length").value_or("0").toLongLong(&isNumber);
    if (!isNumber || length < 0)
        return std::unexpected(400);
    if (length > largestBody)
        return std::unexpected(413);
    const qsizetype bodyStart = headEnd + 4;
    if (buffer.size() < bodyStart + length)
        return std::nullopt;
    request.body = buffer.mid(bodyStart, length);
    buffer.remove(0, bodyStart + length);
    return request;
}

} // namespace kestrel::demo
