#pragma once
#include "platform/SoundPlayer.h"

namespace kestrel {

/// Silence.
class NullSoundPlayer final : public SoundPlayer
{
public:
    void play(const QString & /*name*/) override { }
};

} // namespace kestrel
