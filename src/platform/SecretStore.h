#pragma once
#include "platform/AwaitedBytes.h"
#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QObject>
#include <QString>
#include <expected>

namespace kestrel {

/// What identifies a secret: exactly these two attributes.
struct SecretItem
{
    QString service;
    QString account;

    friend bool operator==(const SecretItem &, const SecretItem &) = default;
};

/// Outcome of a secret store's operation. The numbers are shown to people and stand in error texts.
enum class SecretStatus : qint32 {
    Success = 0,
    NotFound = -25300,
    Locked = -25308, ///< the item may be there, but the store must be unlocked first
    Unavailable = -25291, ///< there is no secret service at all
    Dismissed = -128, ///< the person closed the store's own question
    Failed = -50, ///< anything else
};

/// Where secrets are kept, and whether they can be had just now.
struct SecretStoreCondition
{
    enum class Place { Nowhere, SecretService, File };

    Place place = Place::Nowhere;
    QString program; ///< that answers as the secret service; empty where it is not known
    SecretStatus status = SecretStatus::Unavailable; ///< Success, Locked, Unavailable or Failed

    friend bool operator==(const SecretStoreCondition &, const SecretStoreCondition &) = default;
};

/// Per-user secrets, each a run of bytes. The operations wait for the store's process without blocking the
/// thread. A locked store is unlocked once per locking, in the background: the operation that met it ends
/// with Locked at once, and opened() follows when the person has unlocked it. Main thread only.
class SecretStore : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    [[nodiscard]] virtual QCoro::Task<std::expected<QByteArray, SecretStatus>>
    copyMatching(SecretItem item) = 0;
    /// Replaces the bytes of an item that exists; NotFound when it does not.
    [[nodiscard]] virtual QCoro::Task<SecretStatus> update(SecretItem item, QByteArray data) = 0;
    [[nodiscard]] virtual QCoro::Task<SecretStatus> add(SecretItem item, QByteArray data) = 0;
    [[nodiscard]] virtual QCoro::Task<SecretStatus> remove(SecretItem item) = 0;

    /// As it is now. The person is asked nothing.
    [[nodiscard]] virtual QCoro::Task<SecretStoreCondition> condition() = 0;

Q_SIGNALS:
    /// The store was locked or missing before and can be read now.
    void opened();
    /// The store cannot be used. `message` names what to install or to do, ready to be shown; said once until
    /// the store can be used again.
    void trouble(const QString &message);
};

} // namespace kestrel
