#pragma once
#include "platform/SessionInstance.h"
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <chrono>

namespace kestrel {

struct HandOverPatience
{
    std::chrono::milliseconds beforeAsking { 2000 }; ///< for a verb, until the other end is looked at
    std::chrono::milliseconds forAnAnswer { 8000 }; ///< to the question what it is
};

/// One instance per session bus and bus name. It is reached at /app/kestrel/Kestrel through the method
/// app.kestrel.Kestrel1.Run(as arguments) → (i exitCode, s output, s errors), and tells of changes by the
/// signal StatusChanged.
class DBusSessionInstance final : public SessionInstance, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "app.kestrel.Kestrel1")
public:
    explicit DBusSessionInstance(QString busName, HandOverPatience patience = {}, QObject *parent = nullptr);
    ~DBusSessionInstance() override;

    [[nodiscard]] Claim claim(VerbHandler handler) override;
    [[nodiscard]] QCoro::Task<std::expected<VerbResult, QString>> handOver(QStringList arguments) override;
    void announceChange() override;
    void follow() override;

public Q_SLOTS:
    /// On the bus only; the answer follows when the verb is done.
    Q_SCRIPTABLE int Run(const QStringList &arguments, QString &output, QString &errors);

Q_SIGNALS:
    /// On the bus only.
    Q_SCRIPTABLE void StatusChanged();

private:
    enum class Peer { Kestrel, Silent, Stranger };

    [[nodiscard]] QCoro::Task<Peer> peer();
    /// What to say when somebody has the name who does not act like a Kestrel.
    [[nodiscard]] QCoro::Task<QString> complaintAbout(Peer peer);
    QCoro::Task<void> answer(QStringList arguments, QDBusConnection connection, QDBusMessage message);

    QString m_busName;
    HandOverPatience m_patience;
    VerbHandler m_handler;
    bool m_isOwner = false;
    bool m_announces = false;
};

} // namespace kestrel
