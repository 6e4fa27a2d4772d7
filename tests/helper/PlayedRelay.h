#pragma once
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QObject>
#include <functional>
#include <memory>
#include <optional>

namespace kestrel {

/// A relay over a real socket that says and does what a test sets. Each request goes to `answer`, which gives
/// what is sent back beside its "id", or nothing for silence.
class PlayedRelay final : public QObject
{
    Q_OBJECT
public:
    using Answer = std::function<std::optional<QJsonObject>(const QJsonObject &request)>;

    /// `age`: lower is older.
    PlayedRelay(const QString &folder, int age, Answer given)
        : answer(std::move(given))
        , path(folder + QStringLiteral("/%1-%2.sock").arg(age, 16, 16, QLatin1Char('0')).arg(age))
    {
        connect(&m_server, &QLocalServer::newConnection, this, &PlayedRelay::welcome);
        // as the real one does: what is there under its name listens
        m_server.listen(path + QStringLiteral(".new"));
        QFile::rename(path + QStringLiteral(".new"), path);
    }
    ~PlayedRelay() override { leave(); }

    /// Everything at once, its socket's file too.
    void leave()
    {
        m_server.close();
        m_clients.clear();
        QFile::remove(path);
    }

    void sendAll(const QByteArray &bytes)
    {
        for (const auto &client : m_clients) {
            client->write(bytes);
            client->flush();
        }
    }

    static QByteArray frame(const QJsonObject &message)
    {
        const QByteArray body = QJsonDocument(message).toJson(QJsonDocument::Compact);
        return prefix(static_cast<quint32>(body.size())) + body;
    }
    static QByteArray prefix(quint32 length)
    {
        return QByteArray(reinterpret_cast<const char *>(&length), sizeof length);
    }

    Answer answer;
    QString path;
    QByteArray greeting = frame({ { QStringLiteral("relay"), 1 },
                                  { QStringLiteral("route"), QStringLiteral("extension") },
                                  { QStringLiteral("browser"), QStringLiteral("/usr/bin/played") },
                                  { QStringLiteral("userDataDir"), QStringLiteral("/nowhere") } });
    QList<QJsonObject> requests;
    int clients = 0; ///< ever

private:
    void welcome()
    {
        while (QLocalSocket *client = m_server.nextPendingConnection()) {
            ++clients;
            m_clients.emplace_back(client);
            connect(client, &QLocalSocket::readyRead, this, [this, client] { read(client); });
            client->write(greeting);
            client->flush();
        }
    }

    void read(QLocalSocket *client)
    {
        quint32 length = 0;
        while (client->peek(reinterpret_cast<char *>(&length), sizeof length) == sizeof length
               && client->bytesAvailable() >= qint64(sizeof length) + length) {
            client->skip(sizeof length);
            const QJsonObject request = QJsonDocument::fromJson(client->read(length)).object();
            requests.append(request);
            auto reply = answer(request);
            if (!reply)
                continue;
            reply->insert(QStringLiteral("id"), request.value(QStringLiteral("id")));
            client->write(frame(*reply));
            client->flush();
        }
    }

    struct Later
    {
        void operator()(QLocalSocket *socket) const
        {
            socket->disconnect();
            socket->abort();
            socket->deleteLater();
        }
    };
    QLocalServer m_server;
    std::vector<std::unique_ptr<QLocalSocket, Later>> m_clients;
};

} // namespace kestrel
