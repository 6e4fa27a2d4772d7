#include "streamdeck/MaskGuard.h"
#include <QTcpSocket>

namespace kestrel {

MaskGuard::MaskGuard(QTcpSocket &socket)
    : QObject(&socket)
    , m_socket(socket)
    , m_left(socket.bytesAvailable())
{
    connect(&socket, &QTcpSocket::readyRead, this, &MaskGuard::look);
}

void MaskGuard::open(std::function<void()> refuse, const std::function<void()> &afterReading)
{
    m_refuse = std::move(refuse);
    m_left = m_socket.bytesAvailable();
    // slots run in the order of their connections: this one comes after Qt's, as look() comes before
    connect(&m_socket, &QTcpSocket::readyRead, this, [this, afterReading] {
        m_left = m_socket.bytesAvailable();
        afterReading();
    });
}

void MaskGuard::look()
{
    const qint64 available = m_socket.bytesAvailable();
    if (available <= m_left)
        return;
    if (!m_refuse)
        return m_socket.abort();
    if (m_check.take(QByteArrayView(m_socket.peek(available)).sliced(m_left)))
        return;
    m_socket.readAll();
    m_refuse();
}

} // namespace kestrel
