#pragma once
#include "platform/SoundPlayer.h"

namespace kestrel {

/// Silence.
class NullSoundPlayer final : public SoundPlayer
{
public:
    void play(const QString & /*name*/) override { }
    [[nodiscard]] QCoro::Task<SoundCondition> condition(QString /*name*/) override
    {
        co_return SoundCondition { false, QStringLiteral("sounds are not played here") };
    }
};

} // namespace kestrel
