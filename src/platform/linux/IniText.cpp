#include "platform/linux/IniText.h"
#include <QStringDecoder>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr QLatin1StringView emptyList { "@Invalid()" };
constexpr QLatin1StringView bytesBegin { "@ByteArray(" };
constexpr QLatin1StringView bytesEnd { ")" };

/// Calls `visit(index, isQuoted)` for every character that no backslash stands before, until it returns
/// false; the result is whether the last quote was closed.
template<typename Visit>
bool scan(QStringView text, Visit visit)
{
    bool isQuoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\\') {
            ++i;
            continue;
        }
        if (text[i] == u'"')
            isQuoted = !isQuoted;
        if (!visit(i, isQuoted))
            break;
    }
    return !isQuoted;
}

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t';
}

/// Without the blanks around it; other white space belongs to the text.
QStringView stripped(QStringView text)
{
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

QStringView withoutComment(QStringView value)
{
    qsizetype end = value.size();
    scan(value, [&](qsizetype i, bool isQuoted) {
        if (isQuoted || value[i] != u';' || (i > 0 && !isBlank(value[i - 1])))
            return true;
        end = i;
        return false;
    });
    return stripped(value.first(end));
}

bool isOctalDigit(char16_t c)
{
    return c >= u'0' && c <= u'7';
}

bool isHexDigit(char16_t c)
{
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

/// The number that begins at `at` and goes on as long as there are digits; `at` moves behind it.
QChar escapedNumber(QStringView text, qsizetype &at, int base)
{
    const auto isDigit = base == 16 ? isHexDigit : isOctalDigit;
    const qsizetype begin = at;
    while (at < text.size() && isDigit(text[at].unicode()))
        ++at;
    return QChar(text.sliced(begin, at - begin).toUShort(nullptr, base));
}

QString unescaped(QStringView text)
{
    static constexpr std::pair<char16_t, char16_t> letters[] = { { u'a', u'\a' }, { u'b', u'\b' },
                                                                 { u'f', u'\f' }, { u'n', u'\n' },
                                                                 { u'r', u'\r' }, { u't', u'\t' },
                                                                 { u'v', u'\v' } };
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size();) {
        const QChar c = text[i++];
        if (c != u'\\' || i == text.size()) {
            result.append(c);
            continue;
        }
        const char16_t escape = text[i].unicode();
        const auto letter = std::ranges::find(letters, escape, &std::pair<char16_t, char16_t>::first);
        if (letter != std::end(letters)) {
            result.append(QChar(letter->second));
            ++i;
        } else if (escape == u'x') {
            result.append(escapedNumber(text, ++i, 16));
        } else if (isOctalDigit(escape)) {
            result.append(escapedNumber(text, i, 8));
        } else {
            result.append(QChar(escape));
            ++i;
        }
    }
    return result;
}

/// In quotes, in ASCII where `asciiOnly`.
QString quoted(const QString &text, bool asciiOnly = false)
{
    QString result = u"\""_s;
    bool afterNumber = false;
    for (const QChar c : text) {
        const char16_t code = c.unicode();
        // a digit after \x4 would be read as part of the number
        const bool continuesNumber = afterNumber && isHexDigit(code);
        afterNumber = false;
        if (code == u'"' || code == u'\\') {
            result.append(u'\\').append(c);
        } else if (code == u'\n') {
            result.append("\\n"_L1);
        } else if (code < 0x20 || code == 0x7f || (asciiOnly && code > 0x7f) || continuesNumber) {
            result.append("\\x"_L1).append(QString::number(code, 16));
            afterNumber = true;
        } else {
            result.append(c);
        }
    }
    return result.append(u'"');
}

bool isQuotedWhole(QStringView value)
{
    if (!value.startsWith(u'"'))
        return false;
    qsizetype last = 0;
    const bool isClosed = scan(value, [&](qsizetype i, bool isQuoted) {
        last = i;
        return isQuoted;
    });
    return isClosed && last == value.size() - 1;
}

/// Nothing where only the first part of the value is in quotes.
std::optional<QString> textOf(QStringView value)
{
    if (isQuotedWhole(value))
        return unescaped(value.sliced(1, value.size() - 2));
    if (value.startsWith(u'"'))
        return {};
    // QSettings writes short text without quotes but with escapes; people write quotes and mean them
    bool hasBareQuote = false;
    scan(value, [&](qsizetype, bool isQuoted) { return !(hasBareQuote = hasBareQuote || isQuoted); });
    return hasBareQuote ? value.toString() : unescaped(value);
}

// '@' begins QSettings' other types, and is doubled where it is meant
QString marked(const QString &text)
{
    return text.startsWith(u'@') ? u'@' + text : text;
}

QString unmarked(const QString &text)
{
    return text.startsWith("@@"_L1) ? text.sliced(1) : text;
}

bool isBytes(QStringView text)
{
    return text.startsWith(bytesBegin) && text.endsWith(bytesEnd);
}

} // namespace

IniText::IniText(const QByteArray &text)
{
    if (text.isEmpty())
        return;
    QList<QByteArray> raws = text.split('\n');
    m_endsInLineBreak = raws.last().isEmpty();
    if (m_endsInLineBreak)
        raws.removeLast();
    bool isGeneral = true;
    for (const QByteArray &raw : std::as_const(raws)) {
        Line line = parse(raw);
        if (line.kind == Kind::GeneralSection || line.kind == Kind::Section)
            isGeneral = line.kind == Kind::GeneralSection;
        else if (line.kind == Kind::Entry && !isGeneral)
            line.kind = Kind::Other;
        m_lines.append(std::move(line));
    }
}

IniText::Line IniText::parse(const QByteArray &raw)
{
    Line damaged { raw, Kind::Damaged, {}, {} };
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString line = decoder(raw.trimmed());
    if (decoder.hasError()
        || std::ranges::any_of(line, [](QChar c) { return c.unicode() < 0x20 && c != u'\t'; }))
        return damaged;
    if (line.isEmpty() || line.startsWith(u';') || line.startsWith(u'#'))
        return { raw, Kind::Other, {}, {} };
    if (line.startsWith(u'[')) {
        const qsizetype end = line.indexOf(u']');
        if (end < 0)
            return damaged;
        const bool isGeneral =
            QStringView(line).sliced(1, end - 1).trimmed().compare("general"_L1, Qt::CaseInsensitive) == 0;
        return { raw, isGeneral ? Kind::GeneralSection : Kind::Section, {}, {} };
    }
    const qsizetype equals = line.indexOf(u'=');
    if (equals <= 0)
        return damaged;
    const QString value = withoutComment(QStringView(line).sliced(equals + 1)).toString();
    if (value.startsWith(u'"') && !scan(value, [](qsizetype, bool) { return true; }))
        return damaged;
    return { raw, Kind::Entry, stripped(QStringView(line).first(equals)).toString(), value };
}

QByteArray IniText::text() const
{
    QByteArray text;
    for (const Line &line : m_lines)
        text.append(line.raw).append('\n');
    if (!m_endsInLineBreak)
        text.chop(1);
    return text;
}

bool IniText::isDamaged() const
{
    return std::ranges::any_of(m_lines, [](const Line &line) { return line.kind == Kind::Damaged; });
}

void IniText::dropDamagedLines()
{
    m_lines.removeIf([](const Line &line) { return line.kind == Kind::Damaged; });
}

std::optional<QString> IniText::value(const QString &key) const
{
    const auto found = std::find_if(m_lines.rbegin(), m_lines.rend(), [&](const Line &line) {
        return line.kind == Kind::Entry && line.key == key;
    });
    if (found == m_lines.rend())
        return {};
    return found->value;
}

std::optional<qint64> IniText::integer(const QString &key) const
{
    bool isNumber = false;
    const qint64 number = value(key).value_or(QString()).toLongLong(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

std::optional<bool> IniText::boolean(const QString &key) const
{
    const QString word = value(key).value_or(QString()).toLower();
    if (word == "true"_L1 || word == "yes"_L1 || word == "on"_L1 || word == "1"_L1)
        return true;
    if (word == "false"_L1 || word == "no"_L1 || word == "off"_L1 || word == "0"_L1)
        return false;
    return {};
}

std::optional<QString> IniText::string(const QString &key) const
{
    const auto stored = value(key);
    if (!stored || *stored == emptyList)
        return {};
    const auto text = textOf(*stored);
    if (!text || isBytes(*text))
        return {};
    return unmarked(*text);
}

std::optional<QStringList> IniText::stringList(const QString &key) const
{
    const auto stored = value(key);
    if (!stored || isBytes(*stored))
        return {};
    if (stored->isEmpty() || *stored == emptyList)
        return QStringList();
    QStringList list;
    qsizetype begin = 0;
    const auto take = [&](qsizetype end) {
        const auto item = textOf(stripped(QStringView(*stored).sliced(begin, end - begin)));
        begin = end + 1;
        list.append(unmarked(item.value_or(QString())));
        return item.has_value();
    };
    bool isList = true;
    scan(*stored, [&](qsizetype i, bool isQuoted) {
        if (!isQuoted && stored->at(i) == u',')
            isList = take(i);
        return isList;
    });
    return isList && take(stored->size()) ? std::optional(list) : std::nullopt;
}

std::optional<QByteArray> IniText::data(const QString &key) const
{
    const auto text = textOf(value(key).value_or(QString()));
    if (!text || !isBytes(*text))
        return {};
    const QStringView bytes = QStringView(*text).sliced(bytesBegin.size()).chopped(bytesEnd.size());
    if (std::ranges::any_of(bytes, [](QChar c) { return c.unicode() > 0xff; }))
        return {};
    return bytes.toLatin1();
}

void IniText::setInteger(const QString &key, qint64 value)
{
    set(key, QString::number(value));
}

void IniText::setBoolean(const QString &key, bool value)
{
    set(key, value ? u"true"_s : u"false"_s);
}

void IniText::setString(const QString &key, const QString &value)
{
    set(key, quoted(marked(value)));
}

void IniText::setStringList(const QString &key, const QStringList &value)
{
    QStringList items;
    for (const QString &item : value)
        items.append(quoted(marked(item)));
    set(key, items.isEmpty() ? QString(emptyList) : items.join(", "_L1));
}

void IniText::setData(const QString &key, const QByteArray &value)
{
    set(key, quoted(bytesBegin + QString::fromLatin1(value) + bytesEnd, true));
}

void IniText::remove(const QString &key)
{
    m_lines.removeIf([&](const Line &line) { return line.kind == Kind::Entry && line.key == key; });
}

void IniText::set(const QString &key, const QString &value)
{
    if (this->value(key) == value)
        return;
    const Line line { key.toUtf8() + '=' + value.toUtf8(), Kind::Entry, key, value };
    const auto lastWhere = [&](auto matches) {
        const auto found = std::find_if(m_lines.rbegin(), m_lines.rend(), matches);
        return m_lines.rend() - found - 1;
    };
    m_endsInLineBreak = true;
    const qsizetype same =
        lastWhere([&](const Line &other) { return other.kind == Kind::Entry && other.key == key; });
    if (same >= 0) {
        m_lines[same] = line;
        return;
    }
    qsizetype before = lastWhere([](const Line &other) { return other.kind == Kind::Entry; });
    if (before < 0)
        before = lastWhere([](const Line &other) { return other.kind == Kind::GeneralSection; });
    if (before < 0) {
        m_lines.append({ "[General]", Kind::GeneralSection, {}, {} });
        before = m_lines.size() - 1;
    }
    m_lines.insert(before + 1, line);
}

} // namespace kestrel
