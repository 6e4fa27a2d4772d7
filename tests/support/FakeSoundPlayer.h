#pragma once
#include "platform/SoundPlayer.h"
#include <QStringList>

namespace kestrel {

class FakeSoundPlayer final : public SoundPlayer
{
public:
    void play(const QString &name) override { played.append(name); }

    QStringList played;
};

} // namespace kestrel
