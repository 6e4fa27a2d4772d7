#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace kestrel::relay {

/// Of one message, in bytes: a browser drops a connection that brings more than a megabyte.
inline constexpr std::size_t largestMessage = 1'000'000;

/// How messages are told apart on a stream.
enum class Framing {
    Length, ///< a 32-bit length in native byte order, then so many bytes
    Zero, ///< a zero byte behind each
};

/// What a stream needs around `body`.
[[nodiscard]] std::string framed(std::string_view body, Framing framing);

/// Cuts a stream into messages, however its bytes arrive.
class FrameReader final
{
public:
    enum class Excess { Skip, Refuse };

    FrameReader(Framing framing, Excess excess);

    /// Hands each message that is complete to `take`. False when one was empty or too long and Excess is
    /// Refuse: nothing on this stream makes sense any more. With Skip such a message is left out.
    [[nodiscard]] bool feed(std::string_view bytes, const std::function<void(std::string_view)> &take);

private:
    [[nodiscard]] bool feedLengths(std::string_view bytes, const std::function<void(std::string_view)> &take);
    [[nodiscard]] bool feedZeros(std::string_view bytes, const std::function<void(std::string_view)> &take);
    void release();

    Framing m_framing;
    Excess m_excess;
    std::string m_head; ///< the bytes of a length that are there
    std::string m_body;
    std::uint32_t m_missing = 0; ///< bytes of the body
    bool m_isSkipping = false;
};

} // namespace kestrel::relay
