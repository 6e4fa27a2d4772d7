#include "helper/relay/Json.h"
#include <array>
#include <cstdio>

namespace kestrel::relay {

namespace {

/// Of the character that starts here; 0 where none does (RFC 3629).
std::size_t utf8Length(std::string_view text)
{
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = at(0);
    const std::size_t length = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (length == 0 || first > 0xF4 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xC0U) != 0x80)
            return 0;
    }
    const bool isOverlong = (first == 0xE0 && at(1) < 0xA0) || (first == 0xF0 && at(1) < 0x90);
    const bool isNoCharacter = (first == 0xED && at(1) > 0x9F) || (first == 0xF4 && at(1) > 0x8F);
    return isOverlong || isNoCharacter ? 0 : length;
}

} // namespace

std::string jsonText(std::string_view text)
{
    std::string json = "\"";
    while (!text.empty()) {
        const std::size_t length = utf8Length(text);
        const char first = text.front();
        if (length == 0) {
            json += "\xEF\xBF\xBD";
        } else if (first == '"' || first == '\\') {
            json += { '\\', first };
        } else if (static_cast<unsigned char>(first) < 0x20) {
            std::array<char, 8> escape {};
            std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(first));
            json += escape.data();
        } else {
            json += text.substr(0, length);
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return json + '"';
}

} // namespace kestrel::relay
