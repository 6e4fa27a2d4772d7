#include "helper/relay/Frames.h"
#include <algorithm>
#include <cstring>

namespace kestrel::relay {

std::string framed(std::string_view body, Framing framing)
{
    std::string message;
    if (framing == Framing::Zero) {
        message.reserve(body.size() + 1);
        message.append(body).push_back('\0');
        return message;
    }
    const auto length = static_cast<std::uint32_t>(body.size());
    message.resize(sizeof length);
    std::memcpy(message.data(), &length, sizeof length);
    return message.append(body);
}

FrameReader::FrameReader(Framing framing, Excess excess)
    : m_framing(framing)
    , m_excess(excess)
{
}

bool FrameReader::feed(std::string_view bytes, const std::function<void(std::string_view)> &take)
{
    return m_framing == Framing::Length ? feedLengths(bytes, take) : feedZeros(bytes, take);
}

bool FrameReader::feedLengths(std::string_view bytes, const std::function<void(std::string_view)> &take)
{
    while (!bytes.empty()) {
        if (m_missing == 0) {
            const auto part = bytes.substr(0, sizeof m_missing - m_head.size());
            m_head.append(part);
            bytes.remove_prefix(part.size());
            if (m_head.size() < sizeof m_missing)
                return true;
            std::memcpy(&m_missing, m_head.data(), sizeof m_missing);
            m_head.clear();
            m_isSkipping = m_missing > largestMessage;
            if (m_excess == Excess::Refuse && (m_isSkipping || m_missing == 0))
                return false;
            continue;
        }
        const auto part = bytes.substr(0, m_missing);
        bytes.remove_prefix(part.size());
        m_missing -= static_cast<std::uint32_t>(part.size());
        if (m_isSkipping)
            continue;
        m_body.append(part);
        if (m_missing == 0) {
            take(m_body);
            release();
        }
    }
    return true;
}

bool FrameReader::feedZeros(std::string_view bytes, const std::function<void(std::string_view)> &take)
{
    while (!bytes.empty()) {
        const auto end = bytes.find('\0');
        const auto part = bytes.substr(0, end);
        if (m_body.size() + part.size() > largestMessage) {
            if (m_excess == Excess::Refuse)
                return false;
            m_isSkipping = true;
        }
        if (!m_isSkipping)
            m_body.append(part);
        if (end == std::string_view::npos)
            return true;
        bytes.remove_prefix(end + 1);
        if (!m_isSkipping && !m_body.empty())
            take(m_body);
        m_isSkipping = false;
        release();
    }
    return true;
}

/// A large message must not stay in memory for as long as the browser runs.
void FrameReader::release()
{
    if (m_body.capacity() > 16'384)
        std::string().swap(m_body);
    m_body.clear();
}

} // namespace kestrel::relay
