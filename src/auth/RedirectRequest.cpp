#include "auth/RedirectRequest.h"
#include "auth/Utf8.h"
#include <QList>
#include <QStringList>
#include <algorithm>
#include <cctype>
#include <optional>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

using Kind = RedirectFault::Kind;

std::optional<QString> percentDecode(QStringView text)
{
    const QByteArray encoded = text.toUtf8();
    const auto isHexDigit = [&](qsizetype at) {
        return at < encoded.size() && std::isxdigit(quint8(encoded[at]));
    };
    for (qsizetype at = encoded.indexOf('%'); at >= 0; at = encoded.indexOf('%', at + 1)) {
        if (!isHexDigit(at + 1) || !isHexDigit(at + 2))
            return {};
    }
    return fromStrictUtf8(QByteArray::fromPercentEncoding(encoded));
}

struct QueryItem
{
    QString name;
    std::optional<QString> value; ///< nothing without a "="
};

/// Nothing at all when any of it is not valid percent-encoding of UTF-8. Unlike in a form, "+" stands for
/// itself.
QList<QueryItem> parseQuery(QStringView query)
{
    QList<QueryItem> items;
    for (const QStringView part : query.tokenize(u'&')) {
        const qsizetype separator = part.indexOf(u'=');
        const auto name = percentDecode(separator < 0 ? part : part.first(separator));
        const auto value =
            separator < 0 ? std::optional(QString()) : percentDecode(part.sliced(separator + 1));
        if (!name || !value)
            return {};
        items.append({ *name, separator < 0 ? std::nullopt : value });
    }
    return items;
}

const QueryItem *firstNamed(const QList<QueryItem> &items, QLatin1StringView name)
{
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const QueryItem &item) { return item.name == name; });
    return found == items.end() ? nullptr : &*found;
}

/// The value of the first line that begins like a Host header, the request line included.
std::optional<QString> hostOf(const QStringList &lines)
{
    constexpr auto name = "host:"_L1;
    const auto line = std::find_if(lines.begin(), lines.end(), [&](const QString &candidate) {
        return candidate.toLower().startsWith(name);
    });
    if (line == lines.end())
        return {};
    QStringView value = QStringView(*line).sliced(name.size());
    const auto isBlank = [](QChar c) { return c == u' ' || c == u'\t'; };
    while (!value.isEmpty() && isBlank(value.front()))
        value = value.sliced(1);
    while (!value.isEmpty() && isBlank(value.back()))
        value.chop(1);
    return value.toString();
}

std::unexpected<RedirectFault> fault(Kind kind, const QString &error = {})
{
    return std::unexpected(RedirectFault { kind, error });
}

std::expected<RedirectCallback, RedirectFault> readTarget(const QString &target)
{
    const qsizetype mark = target.indexOf(u'?');
    const auto items = mark < 0 ? QList<QueryItem>() : parseQuery(QStringView(target).sliced(mark + 1));
    if (const auto *error = firstNamed(items, "error"_L1))
        return error->value ? fault(Kind::Denied, *error->value) : fault(Kind::Incomplete);
    const auto *code = firstNamed(items, "code"_L1);
    const auto *state = firstNamed(items, "state"_L1);
    if (!code || !code->value || !state || !state->value)
        return fault(Kind::Incomplete);
    return RedirectCallback { *code->value, *state->value };
}

} // namespace

std::expected<RedirectCallback, RedirectFault> readRedirect(const QByteArray &bytes, quint16 port)
{
    const auto text = fromStrictUtf8(bytes);
    if (!text)
        return fault(Kind::Unreadable);
    const QStringList lines = text->split("\r\n"_L1);
    const QStringList words = lines.first().split(u' ', Qt::SkipEmptyParts);
    if (words.size() < 2 || words[0] != "GET"_L1)
        return fault(Kind::Unreadable);
    const auto host = hostOf(lines);
    if (!host || host->toLower() != u"127.0.0.1:%1"_s.arg(port))
        return fault(Kind::BadHost);
    if (!words[1].startsWith("/callback"_L1))
        return fault(Kind::WrongPath);
    return readTarget(words[1]);
}

} // namespace kestrel
