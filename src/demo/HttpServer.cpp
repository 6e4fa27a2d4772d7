#include "demo/HttpServer.h"
#include <QHostAddress>
#include <QSslServer>
#include <QTcpSocket>
#include <QTimer>

namespace kestrel::demo {

namespace {

/// One client. Deletes itself when the connection is gone.
class Connection final : public QObject
{
public:
    Connection(QTcpSocket *socket, qint64 number, const HttpServer::Handler &handler, QObject *parent)
        : QObject(parent)
        , m_socket(socket)
        , m_number(number)
        , m_handler(handler)
    {
        socket->setParent(this);
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        // what a busy connection has not asked for stays in the kernel
        socket->setReadBufferSize(largestHead);
        connect(socket, &QTcpSocket::readyRead, this, &Connection::serve);
        connect(socket, &QTcpSocket::disconnected, this, &QObject::deleteLater);
        connect(&m_byteTimer, &QTimer::timeout, this, &Connection::sendOneByte);
    }

private:
    void serve()
    {
        while (!m_isBusy) {
            m_buffer += m_socket->readAll();
            auto taken = takeRequest(m_buffer);
            if (!taken) {
                m_buffer.clear();
                m_keepsAlive = false;
                start({ .status = taken.error(), .contentType = "text/plain", .body = {} });
                return;
            }
            if (!*taken)
                return;
            (*taken)->connection = m_number;
            m_keepsAlive = (*taken)->keepsAlive();
            start(m_handler(**taken));
        }
    }

    void start(Answer answer)
    {
        m_isBusy = true;
        if (answer.delay.count() == 0)
            return deliver(answer);
        const auto delay = answer.delay;
        QTimer::singleShot(delay, this, [this, answer = std::move(answer)] {
            deliver(answer);
            serve();
        });
    }

    void deliver(const Answer &answer)
    {
        switch (answer.delivery) {
        case Answer::Delivery::Nothing:
            m_socket->disconnectFromHost();
            return;
        case Answer::Delivery::Half:
            m_socket->write(answer.head(m_keepsAlive));
            m_socket->write(answer.body.first(answer.body.size() / 2));
            m_socket->disconnectFromHost();
            return;
        case Answer::Delivery::ByteByByte:
            m_slowBytes = answer.head(m_keepsAlive) + answer.body;
            m_slowPosition = 0;
            m_byteTimer.start(answer.byteInterval);
            return;
        case Answer::Delivery::Whole:
            m_socket->write(answer.head(m_keepsAlive));
            m_socket->write(answer.body);
            return finish();
        }
    }

    void sendOneByte()
    {
        m_socket->write(m_slowBytes.constData() + m_slowPosition, 1);
        m_socket->flush();
        if (++m_slowPosition < m_slowBytes.size())
            return;
        m_byteTimer.stop();
        m_slowBytes.clear();
        finish();
        serve();
    }

    /// A connection that closes stays busy: what is still in its buffer is not served.
    void finish()
    {
        if (m_keepsAlive)
            m_isBusy = false;
        else
            m_socket->disconnectFromHost();
    }

    QTcpSocket *m_socket;
    qint64 m_number;
    const HttpServer::Handler &m_handler;
    QByteArray m_buffer;
    bool m_isBusy = false; ///< an answer is under way
    bool m_keepsAlive = true;
    QTimer m_byteTimer;
    QByteArray m_slowBytes;
    qsizetype m_slowPosition = 0;
};

std::unique_ptr<QTcpServer> makeTlsListener(const QSslConfiguration &tls)
{
    auto listener = std::make_unique<QSslServer>();
    listener->setSslConfiguration(tls);
    return listener;
}

} // namespace

HttpServer::HttpServer(Handler handler, QObject *parent)
    : HttpServer(std::move(handler), std::make_unique<QTcpServer>(), parent)
{
}

HttpServer::HttpServer(Handler handler, const QSslConfiguration &tls, QObject *parent)
    : HttpServer(std::move(handler), makeTlsListener(tls), parent)
{
}

HttpServer::HttpServer(Handler handler, std::unique_ptr<QTcpServer> listener, QObject *parent)
    : QObject(parent)
    , m_handler(std::move(handler))
    , m_listener(std::move(listener))
{
    // under TLS a connection can be had only once its handshake is done, which newConnection() does not wait
    // for
    connect(m_listener.get(), &QTcpServer::pendingConnectionAvailable, this, &HttpServer::accept);
}

std::expected<void, QString> HttpServer::listen(quint16 port)
{
    if (!m_listener->listen(QHostAddress::LocalHost, port))
        return std::unexpected(m_listener->errorString());
    return {};
}

void HttpServer::accept()
{
    while (QTcpSocket *socket = m_listener->nextPendingConnection())
        new Connection(socket, ++m_connectionCount, m_handler, this);
}

} // namespace kestrel::demo
