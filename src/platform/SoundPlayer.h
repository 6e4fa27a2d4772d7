#pragma once
#include <QCoro/QCoroTask>
#include <QString>

namespace kestrel {

/// Whether a sound would be heard, as far as this side of the loudspeaker knows.
struct SoundCondition
{
    bool hasSound = false; ///< there is one of that name
    QString serverError; ///< the sound library's words; empty: a sound server takes it

    friend bool operator==(const SoundCondition &, const SoundCondition &) = default;
};

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
    /// Plays nothing. Takes as long as the sound server takes to answer.
    [[nodiscard]] virtual QCoro::Task<SoundCondition> condition(QString name) = 0;
};

} // namespace kestrel
