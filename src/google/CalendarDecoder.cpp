#include "google/CalendarDecoder.h"
#include <QVarLengthArray>
#include <array>
#include <cstdint>
#include <cstring>
#include <simdjson.h>
#include <string_view>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;
using simdjson::dom::element;

namespace kestrel {

namespace {

QString fromUtf8(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Where decoding stopped, and why. The place is put together from the inside out while the calls return.
struct Fault
{
    QString place;
    QString reason;

    /// Always false, so that whoever finds the fault can return it.
    bool is(const QString &what)
    {
        reason = what;
        return false;
    }

    bool isMissing(std::string_view key)
    {
        place = fromUtf8(key);
        return is(u"is missing"_s);
    }

    void insideOf(QString outer)
    {
        if (!place.isEmpty() && !place.startsWith(u'['))
            outer += u'.';
        place.prepend(outer);
    }
};

/// Texts that come again and again in one answer (guests, replies, time zones, service names) become one
/// shared QString: that is quicker than to make them anew, and it saves the memory of thousands of copies.
/// Lives no longer than the parsed document, in which it keeps its place marks.
class TextPool
{
public:
    QString text(std::string_view utf8)
    {
        if (utf8.empty() || utf8.size() > longestPooled)
            return fromUtf8(utf8);
        Entry &entry = m_entries[placeOf(utf8)];
        if (entry.utf8 != utf8)
            entry = { utf8, fromUtf8(utf8) };
        return entry.text;
    }

private:
    struct Entry
    {
        std::string_view utf8;
        QString text;
    };

    /// From the length, the first and the last bytes: no more than texts of few kinds need, and quick.
    static size_t placeOf(std::string_view utf8)
    {
        uint64_t first = 0;
        uint64_t last = 0;
        if (utf8.size() >= sizeof first) {
            std::memcpy(&first, utf8.data(), sizeof first);
            std::memcpy(&last, utf8.data() + utf8.size() - sizeof last, sizeof last);
        } else {
            for (const char byte : utf8)
                first = first << 8 | static_cast<unsigned char>(byte);
        }
        const uint64_t mixed = (first ^ (last << 1 | last >> 63) ^ utf8.size()) * 0x9E37'79B9'7F4A'7C15;
        return mixed >> (64 - placeBits);
    }

    static constexpr size_t longestPooled = 64;
    static constexpr int placeBits = 10;
    std::array<Entry, size_t(1) << placeBits> m_entries;
};

/// What the readers of one answer share.
struct Context
{
    Fault fault;
    TextPool pool;
};

template<typename T>
constexpr bool isOptional = false;
template<typename T>
constexpr bool isOptional<std::optional<T>> = true;

/// One key of a JSON object and the field that it fills. A field that is no std::optional is required.
template<typename Record, typename Value>
struct Field
{
    std::string_view key;
    Value Record::*value;

    static constexpr bool isRequired = !isOptional<Value>;
};

/// The keys of a record.
template<typename Record>
constexpr auto fieldsOf = nullptr;
template<>
constexpr auto fieldsOf<Google::DateTime> = std::tuple {
    Field { "dateTime", &Google::DateTime::dateTime },
    Field { "date", &Google::DateTime::date },
    Field { "timeZone", &Google::DateTime::timeZone },
};
template<>
constexpr auto fieldsOf<Google::Attendee> = std::tuple {
    Field { "email", &Google::Attendee::email },
    Field { "displayName", &Google::Attendee::displayName },
    Field { "responseStatus", &Google::Attendee::responseStatus },
    Field { "organizer", &Google::Attendee::organizer },
    Field { "self", &Google::Attendee::self },
};
template<>
constexpr auto fieldsOf<Google::Organizer> = std::tuple {
    Field { "email", &Google::Organizer::email },
    Field { "displayName", &Google::Organizer::displayName },
};
template<>
constexpr auto fieldsOf<Google::EntryPoint> = std::tuple {
    Field { "entryPointType", &Google::EntryPoint::entryPointType },
    Field { "uri", &Google::EntryPoint::uri },
    Field { "label", &Google::EntryPoint::label },
};
template<>
constexpr auto fieldsOf<Google::ConferenceSolution> = std::tuple {
    Field { "name", &Google::ConferenceSolution::name },
    Field { "iconUri", &Google::ConferenceSolution::iconUri },
};
template<>
constexpr auto fieldsOf<Google::ConferenceData> = std::tuple {
    Field { "entryPoints", &Google::ConferenceData::entryPoints },
    Field { "conferenceSolution", &Google::ConferenceData::conferenceSolution },
};
template<>
constexpr auto fieldsOf<Google::Event> = std::tuple {
    Field { "id", &Google::Event::id },
    Field { "status", &Google::Event::status },
    Field { "summary", &Google::Event::summary },
    Field { "description", &Google::Event::description },
    Field { "location", &Google::Event::location },
    Field { "htmlLink", &Google::Event::htmlLink },
    Field { "start", &Google::Event::start },
    Field { "end", &Google::Event::end },
    Field { "attendees", &Google::Event::attendees },
    Field { "organizer", &Google::Event::organizer },
    Field { "hangoutLink", &Google::Event::hangoutLink },
    Field { "conferenceData", &Google::Event::conferenceData },
};
template<>
constexpr auto fieldsOf<Google::EventsListResponse> = std::tuple {
    Field { "items", &Google::EventsListResponse::items },
    Field { "nextPageToken", &Google::EventsListResponse::nextPageToken },
    Field { "nextSyncToken", &Google::EventsListResponse::nextSyncToken },
};
template<>
constexpr auto fieldsOf<Google::CalendarListEntry> = std::tuple {
    Field { "id", &Google::CalendarListEntry::id },
    Field { "summary", &Google::CalendarListEntry::summary },
    Field { "primary", &Google::CalendarListEntry::primary },
    Field { "backgroundColor", &Google::CalendarListEntry::backgroundColor },
};
template<>
constexpr auto fieldsOf<Google::CalendarListResponse> = std::tuple {
    Field { "items", &Google::CalendarListResponse::items },
};

/// The compiler knows the length of `wanted`, and makes of this a comparison of one or two words.
[[gnu::always_inline]] inline bool isKey(std::string_view key, std::string_view wanted)
{
    return key.size() == wanted.size() && std::memcmp(key.data(), wanted.data(), wanted.size()) == 0;
}

bool read(const element &json, QString &text, Context &context)
{
    std::string_view utf8;
    if (json.get(utf8) != simdjson::SUCCESS)
        return context.fault.is(u"expected a text"_s);
    text = context.pool.text(utf8);
    return true;
}

bool read(const element &json, bool &flag, Context &context)
{
    return json.get(flag) == simdjson::SUCCESS || context.fault.is(u"expected true or false"_s);
}

bool read(const element &json, Instant &instant, Context &context)
{
    std::string_view text;
    if (json.get(text) != simdjson::SUCCESS)
        return context.fault.is(u"expected a text"_s);
    // byte by byte: a date-time that parses is ASCII
    QVarLengthArray<char16_t, 40> units;
    for (const char byte : text)
        units.append(static_cast<unsigned char>(byte));
    const auto parsed = parseInternetDateTime(QStringView(units.data(), units.size()));
    if (!parsed)
        return context.fault.is(u"Unparseable date: "_s + fromUtf8(text));
    instant = *parsed;
    return true;
}

template<typename Record>
bool read(const element &json, Record &record, Context &context);

template<typename T>
bool read(const element &json, std::optional<T> &value, Context &context)
{
    if (json.is_null()) {
        value.reset();
        return true;
    }
    return read(json, value.emplace(), context);
}

template<typename T>
bool read(const element &json, QList<T> &list, Context &context)
{
    simdjson::dom::array array;
    if (json.get(array) != simdjson::SUCCESS)
        return context.fault.is(u"expected a list"_s);
    list.clear();
    list.reserve(static_cast<qsizetype>(array.size()));
    for (const element entry : array) {
        if (!read(entry, list.emplaceBack(), context)) {
            context.fault.insideOf(u"[%1]"_s.arg(list.size() - 1));
            return false;
        }
    }
    return true;
}

template<typename Record>
bool read(const element &json, Record &record, Context &context)
{
    simdjson::dom::object object;
    if (json.get(object) != simdjson::SUCCESS)
        return context.fault.is(u"expected an object"_s);

    constexpr auto fields = fieldsOf<Record>;
    const auto readFields = [&]<size_t... index>(std::index_sequence<index...>) {
        std::array<bool, sizeof...(index)> isThere {};
        for (const auto [key, value] : object) {
            bool isRead = true;
            // the one field of that key reads the value; the value of an unknown key is skipped
            static_cast<void>(
                ((isKey(key, std::get<index>(fields).key)
                  && (isThere[index] = true,
                      isRead = read(value, record.*std::get<index>(fields).value, context), true))
                 || ...));
            if (!isRead) {
                context.fault.insideOf(fromUtf8(key));
                return false;
            }
        }
        return ((isThere[index] || !std::get<index>(fields).isRequired
                 || context.fault.isMissing(std::get<index>(fields).key))
                && ...);
    };
    return readFields(std::make_index_sequence<std::tuple_size_v<decltype(fields)>>());
}

template<typename Answer>
std::expected<Answer, DecodingError> decode(QByteArrayView json)
{
    simdjson::dom::parser parser;

    std::expected<Answer, DecodingError> answer;
    element root;
    // an empty view has no address, and the parser copies from one in any case
    const char *const bytes = json.isEmpty() ? "" : json.data();
    if (const auto error = parser.parse(bytes, static_cast<size_t>(json.size())).get(root)) {
        answer = std::unexpected(
            DecodingError { u"not JSON: "_s + QLatin1StringView(simdjson::error_message(error)) });
    } else if (Context context; !read(root, *answer, context)) {
        const QString place = context.fault.place.isEmpty() ? u"the answer"_s : context.fault.place;
        answer = std::unexpected(DecodingError { place + u": "_s + context.fault.reason });
    }
    return answer;
}

} // namespace

std::expected<Google::EventsListResponse, DecodingError> decodeEventsList(QByteArrayView json)
{
    return decode<Google::EventsListResponse>(json);
}

std::expected<Google::CalendarListResponse, DecodingError> decodeCalendarList(QByteArrayView json)
{
    return decode<Google::CalendarListResponse>(json);
}

} // namespace kestrel
