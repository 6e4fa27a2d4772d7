#pragma once
#include <QtGlobal>

/// Modifier bits of a shortcut, as they are stored. Other bits are kept and mean nothing.
namespace kestrel::Modifier {

inline constexpr quint32 Command = 256; ///< Super
inline constexpr quint32 Shift = 512;
inline constexpr quint32 Option = 2048; ///< Alt
inline constexpr quint32 Control = 4096;

} // namespace kestrel::Modifier
