#pragma once
#include "streamdeck/MaskCheck.h"
#include <QObject>
#include <functional>

QT_BEGIN_NAMESPACE
class QTcpSocket;
QT_END_NAMESPACE

namespace kestrel {

/// Sits on a client's socket, reads along before Qt reads, and keeps from it what comes too early or without
/// a mask. Belongs to the socket. To be made before Qt is given the socket.
class MaskGuard final : public QObject
{
    Q_OBJECT
public:
    explicit MaskGuard(QTcpSocket &socket);

    [[nodiscard]] QTcpSocket &socket() const { return m_socket; }
    /// From here on frames may come; before, whatever comes ends the connection. To be called once Qt reads
    /// from the socket. `refuse` is to end the connection, `afterReading` runs when Qt has read.
    void open(std::function<void()> refuse, const std::function<void()> &afterReading);

private:
    void look();

    QTcpSocket &m_socket;
    std::function<void()> m_refuse; ///< empty until open()
    MaskCheck m_check;
    qint64 m_left; ///< what was looked at and is still unread
};

} // namespace kestrel
