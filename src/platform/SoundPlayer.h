#pragma once
#include <QString>

namespace kestrel {

/// Plays Kestrel's own sounds by name ("Glass", "Ping" …). Never blocks; a missing sound server is no failure
/// that anybody is told of more than once.
class SoundPlayer
{
public:
    SoundPlayer() = default;
    SoundPlayer(const SoundPlayer &) = delete;
    SoundPlayer &operator=(const SoundPlayer &) = delete;
    virtual ~SoundPlayer() = default;

    virtual void play(const QString &name) = 0;
};

} // namespace kestrel
