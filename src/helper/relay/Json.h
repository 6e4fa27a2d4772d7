#pragma once
#include <string>
#include <string_view>

namespace kestrel::relay {

/// `text` as a JSON string with its quotes. Bytes that are not UTF-8, as paths may hold, become U+FFFD.
[[nodiscard]] std::string jsonText(std::string_view text);

} // namespace kestrel::relay
