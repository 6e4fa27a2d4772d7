#pragma once
#include "platform/SoundPlayer.h"
#include <memory>

namespace kestrel {

/// Plays through the desktop's event-sound library. Nothing is loaded before the first sound. Finding the
/// file, the connection to the sound server and the hand-over run on a thread of their own, one at a time: a
/// server that hangs holds up nothing but the sounds that follow.
class CanberraSoundPlayer final : public SoundPlayer
{
public:
    /// Sounds that are not in `installedFolder` are written to `cacheFolder`, since the library reads files
    /// only.
    CanberraSoundPlayer(QString installedFolder, QString cacheFolder);
    ~CanberraSoundPlayer() override;

    void play(const QString &name) override;
    [[nodiscard]] QCoro::Task<SoundCondition> condition(QString name) override;

private:
    struct Output;
    /// Shared with the thread that plays, which may outlive this.
    std::shared_ptr<Output> m_output;
};

} // namespace kestrel
