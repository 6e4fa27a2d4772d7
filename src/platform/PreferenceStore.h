#pragma once
#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>

namespace kestrel {

/// The per-user key-value store. A value that is absent, or that is there as another type than was asked for,
/// reads as null; reading never writes. Main thread only.
class PreferenceStore : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    [[nodiscard]] virtual std::optional<qint64> integer(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<bool> boolean(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<QString> string(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<QStringList> stringList(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<QByteArray> data(const QString &key) const = 0;

    /// Each stores at once and durably; a failure is announced by writeFailed and leaves the file as it was.
    virtual void setInteger(const QString &key, qint64 value) = 0;
    virtual void setBoolean(const QString &key, bool value) = 0;
    virtual void setString(const QString &key, const QString &value) = 0;
    virtual void setStringList(const QString &key, const QStringList &value) = 0;
    virtual void setData(const QString &key, const QByteArray &value) = 0;
    virtual void remove(const QString &key) = 0;

Q_SIGNALS:
    /// Another process changed the store; every value may be a new one.
    void changedElsewhere();
    /// A value could not be stored in the file at `path`; `reason` is a description for the log.
    void writeFailed(const QString &path, const QString &reason);
    /// A value was stored: whatever stood in the way is gone.
    void stored();
};

} // namespace kestrel
