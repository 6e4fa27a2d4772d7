#pragma once
#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QUuid>

namespace kestrel {

/// A session bus of its own, which programs that are started meanwhile take for theirs. It knows the
/// transient services of XDG_RUNTIME_DIR, or with a configuration file those that it names.
class PrivateBus final
{
public:
    explicit PrivateBus(const QString &configuration = {})
    {
        m_daemon.setStandardErrorFile(QProcess::nullDevice());
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       { configuration.isEmpty() ? QStringLiteral("--session")
                                                 : QStringLiteral("--config-file=") + configuration,
                         QStringLiteral("--nofork"), QStringLiteral("--print-address") });
        m_daemon.waitForReadyRead(30000);
        m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toUtf8());
    }
    ~PrivateBus()
    {
        for (const QString &name : std::as_const(m_connections))
            QDBusConnection::disconnectFromBus(name);
        stop();
    }

    [[nodiscard]] QDBusConnection connection()
    {
        m_connections.append(QUuid::createUuid().toString());
        return QDBusConnection::connectToBus(m_address, m_connections.last());
    }

    void stop()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

private:
    QProcess m_daemon;
    QString m_address;
    QStringList m_connections;
};

} // namespace kestrel
