#pragma once
#include "platform/KeyMonitor.h"
#include <QSet>

class QKeyEvent;

namespace kestrel {

/// Stands before all of Qt's windows. A key that was swallowed when it went down stays swallowed until it is
/// let go, also when the recording has ended meanwhile: no control sees half of it. Main thread only.
class QtKeyMonitor final : public KeyMonitor
{
    Q_OBJECT
public:
    explicit QtKeyMonitor(QObject *parent = nullptr);

    void start() override;
    void stop() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] bool swallowPress(const QKeyEvent &press);
    [[nodiscard]] bool swallowRelease(const QKeyEvent &release);

    QSet<quint32> m_swallowed; ///< scan codes of keys that are still down
    bool m_isRunning = false;
};

} // namespace kestrel
