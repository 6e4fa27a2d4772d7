#pragma once
#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace kestrel {

class Preferences;
class SoundPlayer;

/// The alert's sound. What it is given outlives it.
class NotificationSettings final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the settings' model makes it")
    Q_PROPERTY(QStringList sounds READ sounds CONSTANT)
    Q_PROPERTY(int sound READ sound NOTIFY changed)
public:
    NotificationSettings(Preferences &preferences, SoundPlayer &player);

    [[nodiscard]] QStringList sounds() const;
    /// The index of the one that is chosen.
    [[nodiscard]] int sound() const;
    /// Stores it and plays it once.
    Q_INVOKABLE void choose(int index);
    Q_INVOKABLE void play(int index);

Q_SIGNALS:
    void changed();

private:
    Preferences &m_preferences;
    SoundPlayer &m_player;
};

} // namespace kestrel
