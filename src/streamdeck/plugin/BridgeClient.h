#pragma once
#include "streamdeck/MeetStateSnapshot.h"
#include <QObject>
#include <QTimer>
#include <QWebSocket>
#include <chrono>
#include <optional>

namespace kestrel {

/// The plug-in's side of Kestrel's bridge: keeps trying to reach it, and knows the state that it told last.
class BridgeClient final : public QObject
{
    Q_OBJECT
public:
    explicit BridgeClient(quint16 port, QObject *parent = nullptr);
    ~BridgeClient() override;

    /// Nothing while Kestrel is not there.
    [[nodiscard]] const std::optional<MeetStateSnapshot> &snapshot() const { return m_snapshot; }
    /// False when nobody is there to take it; then it looks for Kestrel at once.
    [[nodiscard]] bool send(QLatin1StringView command);

Q_SIGNALS:
    void changed();

private:
    void connectNow();
    void retryLater();
    void read(const QString &message);
    void set(const std::optional<MeetStateSnapshot> &snapshot);

    quint16 m_port;
    QWebSocket m_socket;
    QTimer m_retry;
    std::chrono::milliseconds m_pause;
    std::optional<MeetStateSnapshot> m_snapshot;
};

} // namespace kestrel
