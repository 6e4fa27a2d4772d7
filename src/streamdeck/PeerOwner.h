#pragma once
#include <optional>
#include <sys/types.h>

namespace kestrel {

/// The user whose process holds the other end of a connected IPv4 socket of this machine. Nothing when the
/// other end is not here, or is gone already.
[[nodiscard]] std::optional<uid_t> peerOwner(int descriptor);

/// The two ways to know, of which peerOwner() takes the first that works: one question to the kernel about
/// this socket alone, and the list of all sockets, which takes milliseconds to read.
[[nodiscard]] std::optional<uid_t> peerOwnerFromDiagnostics(int descriptor);
[[nodiscard]] std::optional<uid_t> peerOwnerFromTables(int descriptor);

} // namespace kestrel
