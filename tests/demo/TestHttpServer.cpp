#include "demo/HttpServer.h"
#include <QTcpSocket>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace kestrel::demo;

/// Speaks to the server over a bare socket, where the bytes and their pieces are the test's own.
class TestHttpServer final : public QObject
{
    Q_OBJECT

    /// Repeats what was asked.
    HttpServer m_server { [](const ReceivedRequest &request) {
        return Answer { .status = 200,
                        .contentType = "text/plain",
                        .body = request.method + ' ' + request.path().toUtf8() + ' ' + request.body + '\n' };
    } };
    QTcpSocket m_socket;
    QByteArray m_received;

    void send(const QByteArray &bytes)
    {
        m_socket.write(bytes);
        m_socket.flush();
    }

    [[nodiscard]] QByteArray received()
    {
        m_received += m_socket.readAll();
        return m_received;
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_server.listen(0)); }

    void init()
    {
        m_received.clear();
        m_socket.connectToHost(u"127.0.0.1"_s, m_server.port());
        QTRY_COMPARE(m_socket.state(), QAbstractSocket::ConnectedState);
        m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    }

    void cleanup() { m_socket.abort(); }

    void answersARequestThatArrivesInTwoPieces()
    {
        const QByteArray request = "POST /a%20b HTTP/1.1\r\nHost: 127.0.0.1\r\ncontent-length: 4\r\n\r\ntext";
        for (int size = 1; size < request.size(); ++size) {
            send(request.first(size));
            QTest::qWait(0);
            QVERIFY(received().isEmpty());
            send(request.mid(size));
            QTRY_VERIFY(received().endsWith("\r\n\r\nPOST /a b text\n"));
            m_received.clear();
        }
    }

    void refusesAndCloses_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("431") << "GET / HTTP/1.1\r\nX: " + QByteArray(largestHead, 'x');
        QTest::newRow("413") << "POST / HTTP/1.1\r\nContent-Length: 1048577\r\n\r\n"_ba;
        QTest::newRow("411") << "POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n"_ba;
        QTest::newRow("400") << "POST / HTTP/1.1\r\nContent-Length: -1\r\n\r\n"_ba;
    }

    void refusesAndCloses()
    {
        QFETCH(QByteArray, bytes);
        send(bytes);
        QTRY_COMPARE(m_socket.state(), QAbstractSocket::UnconnectedState);
        QVERIFY2(received().startsWith("HTTP/1.1 "_ba + QTest::currentDataTag()),
                 received().left(100).constData());
    }

    void listensOn127001Alone()
    {
        QTcpSocket socket;
        socket.connectToHost(u"127.0.0.2"_s, m_server.port()); // this machine, as all of 127.0.0.0/8
        QTRY_COMPARE(socket.state(), QAbstractSocket::UnconnectedState);
        QVERIFY(socket.error() != QAbstractSocket::UnknownSocketError);
    }
};

QTEST_GUILESS_MAIN(TestHttpServer)
#include "TestHttpServer.moc"
