#pragma once
#include "platform/SoundPlayer.h"
#include <QStringList>

namespace kestrel {

class FakeSoundPlayer final : public SoundPlayer
{
public:
    void play(const QString &name) override { played.append(name); }
    [[nodiscard]] QCoro::Task<SoundCondition> condition(QString /*name*/) override
    {
        co_return SoundCondition(current); // QCoro moves from what is returned
    }

    QStringList played;
    SoundCondition current { true, {} };
};

} // namespace kestrel
