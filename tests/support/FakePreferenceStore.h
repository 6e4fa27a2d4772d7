#pragma once
#include "platform/PreferenceStore.h"
#include <QMap>
#include <QVariant>

namespace kestrel {

/// A store in memory. `failWrites` makes every write fail as a full disk would.
class FakePreferenceStore final : public PreferenceStore
{
    Q_OBJECT
public:
    [[nodiscard]] std::optional<qint64> integer(const QString &key) const override
    {
        return read<qint64>(key);
    }
    [[nodiscard]] std::optional<bool> boolean(const QString &key) const override { return read<bool>(key); }
    [[nodiscard]] std::optional<QString> string(const QString &key) const override
    {
        return read<QString>(key);
    }
    [[nodiscard]] std::optional<QStringList> stringList(const QString &key) const override
    {
        return read<QStringList>(key);
    }
    [[nodiscard]] std::optional<QByteArray> data(const QString &key) const override
    {
        return read<QByteArray>(key);
    }

    void setInteger(const QString &key, qint64 value) override { write(key, value); }
    void setBoolean(const QString &key, bool value) override { write(key, value); }
    void setString(const QString &key, const QString &value) override { write(key, value); }
    void setStringList(const QString &key, const QStringList &value) override { write(key, value); }
    void setData(const QString &key, const QByteArray &value) override { write(key, value); }
    void remove(const QString &key) override { values.remove(key); }

    /// Changes a value as another process would.
    void changeElsewhere(const QString &key, const QVariant &value)
    {
        values.insert(key, value);
        Q_EMIT changedElsewhere();
    }

    QMap<QString, QVariant> values;
    int writes = 0;
    bool failWrites = false;

private:
    template<typename T>
    [[nodiscard]] std::optional<T> read(const QString &key) const
    {
        const auto found = values.find(key);
        if (found == values.end() || found->metaType() != QMetaType::fromType<T>())
            return {};
        return found->value<T>();
    }

    template<typename T>
    void write(const QString &key, const T &value)
    {
        if (failWrites) {
            Q_EMIT writeFailed(QStringLiteral("/home/ann/kestrel.ini"), QStringLiteral("No space left"));
            return;
        }
        ++writes;
        values.insert(key, QVariant::fromValue(value));
        Q_EMIT stored();
    }
};

} // namespace kestrel
