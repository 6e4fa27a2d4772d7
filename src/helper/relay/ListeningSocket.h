#pragma once
#include <string>

namespace kestrel::relay {

/// The socket that clients connect to, in a folder that is the person's alone. Removed with the object.
class ListeningSocket final
{
public:
    ListeningSocket() = default;
    ~ListeningSocket();
    ListeningSocket(const ListeningSocket &) = delete;
    ListeningSocket &operator=(const ListeningSocket &) = delete;

    /// Makes the folder where it is missing, and clears it of sockets that nobody answers. Empty when it
    /// listens, else what is wrong.
    [[nodiscard]] std::string open();

    [[nodiscard]] int descriptor() const { return m_descriptor; }
    [[nodiscard]] const std::string &path() const { return m_path; }

    /// The next client, non-blocking; -1 when there is none, or it is another user's and was turned away.
    [[nodiscard]] int accept() const;

private:
    int m_descriptor = -1;
    std::string m_path;
};

} // namespace kestrel::relay
