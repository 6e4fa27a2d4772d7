#pragma once
#include "base/Clock.h"
#include <QObject>
#include <QString>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

namespace kestrel {

/// How long until (or since) a meeting's start, in words, and how near that is. Ticks every second while it
/// runs; whoever shows it lets it run only while it can be seen. The clock outlives it.
class Countdown final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("view models make it")
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(Nearness nearness READ nearness NOTIFY changed)
    Q_PROPERTY(bool isRunning READ isRunning WRITE setRunning NOTIFY runningChanged)
public:
    enum class Nearness { Later, Soon, Now };
    Q_ENUM(Nearness)

    Countdown(const Clock &clock, Instant start, QObject *parent = nullptr);

    [[nodiscard]] QString text() const { return m_text; }
    [[nodiscard]] Nearness nearness() const { return m_nearness; }
    [[nodiscard]] bool isRunning() const { return m_timer.isActive(); }
    /// Starting reads the clock at once.
    void setRunning(bool run);
    void setStart(Instant start);

Q_SIGNALS:
    void changed();
    void runningChanged();

private:
    void tick();

    const Clock &m_clock;
    Instant m_start;
    QString m_text;
    Nearness m_nearness = Nearness::Later;
    QTimer m_timer;
};

} // namespace kestrel
