#pragma once
#include "menubar/MeetingItem.h"
#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace kestrel {

class Preferences;

/// The language, and a meeting for the sample of an alert card. What it is given outlives it.
class AppearanceSettings final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the settings' model makes it")
    Q_PROPERTY(QStringList languages READ languages NOTIFY retranslated)
    Q_PROPERTY(int language READ language WRITE setLanguage NOTIFY changed)
    Q_PROPERTY(kestrel::MeetingItem *sample READ sample CONSTANT)
public:
    AppearanceSettings(Preferences &preferences, MeetingOpener &opener, const Clock &clock);

    void retranslate();

    [[nodiscard]] QStringList languages() const;
    [[nodiscard]] int language() const;
    /// The texts follow as soon as whoever owns the translator has heard of it.
    void setLanguage(int index);
    /// A Google Meet meeting, as its card looks when it comes.
    [[nodiscard]] MeetingItem *sample() { return &m_sample; }
    /// Lets the sample's countdown begin anew.
    Q_INVOKABLE void renewSample();

Q_SIGNALS:
    void changed();
    void retranslated();

private:
    [[nodiscard]] Meeting sampleMeeting() const;

    Preferences &m_preferences;
    const Clock &m_clock;
    MeetingItem m_sample;
};

} // namespace kestrel
