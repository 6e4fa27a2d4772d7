#pragma once
#include <QObject>
#include <QTcpSocket>
#include <QTimer>
#include <functional>

namespace kestrel {

/// The first moments of a connection to the bridge: waits for the head of its request and decides by it,
/// before anything else sees a byte. Owns the socket until it is handed over, refused or too late, and
/// deletes itself then. Main thread only.
class DeckHandshake final : public QObject
{
    Q_OBJECT
public:
    struct Answers
    {
        std::function<bool()> hasRoom;
        /// The socket with the whole head, and no more, still to be read.
        std::function<void(QTcpSocket *)> accept;
    };

    DeckHandshake(qintptr descriptor, Answers answers, QObject *parent);

    /// Whether it still waits for the head; a refused client only closes.
    [[nodiscard]] bool isWaiting() const { return m_isWaiting; }
    /// Closes without an answer.
    void abort();

private:
    void read();
    void refuse(const char *status);

    Answers m_answers;
    QTcpSocket *m_socket;
    QTimer m_limit;
    bool m_isWaiting = true;
};

} // namespace kestrel
