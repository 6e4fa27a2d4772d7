#pragma once
#include "platform/PreferenceStore.h"
#include "platform/linux/IniText.h"
#include <QFileSystemWatcher>
#include <QTimer>
#include <chrono>
#include <expected>
#include <functional>

namespace kestrel {

/// The preferences in one INI file (IniText says in which form). A write takes the file's lock, which
/// it shares with other processes and with QSettings, reads what is there now, changes its one value
/// and replaces the file; what could not be stored is not remembered either. Reading creates nothing;
/// the file and its folder (0700) appear with the first write. Lines that cannot be read count as
/// absent, and before a write drops them the file is kept as `<file>.broken`. Owned by app/. Main
/// thread only.
class IniPreferenceStore final : public PreferenceStore
{
    Q_OBJECT
public:
    /// A write waits for other processes' writes, and fails when one takes longer than `lockPatience`.
    explicit IniPreferenceStore(const QString &path,
                                std::chrono::milliseconds lockPatience = std::chrono::seconds(5));

    [[nodiscard]] std::optional<qint64> integer(const QString &key) const override;
    [[nodiscard]] std::optional<bool> boolean(const QString &key) const override;
    [[nodiscard]] std::optional<QString> string(const QString &key) const override;
    [[nodiscard]] std::optional<QStringList> stringList(const QString &key) const override;
    [[nodiscard]] std::optional<QByteArray> data(const QString &key) const override;

    void setInteger(const QString &key, qint64 value) override;
    void setBoolean(const QString &key, bool value) override;
    void setString(const QString &key, const QString &value) override;
    void setStringList(const QString &key, const QStringList &value) override;
    void setData(const QString &key, const QByteArray &value) override;
    void remove(const QString &key) override;

private:
    using Edit = std::function<void(IniText &)>;

    void write(const Edit &edit);
    /// Whether another process has changed the file since it was last read; the error is a description.
    [[nodiscard]] std::expected<bool, QString> writeLocked(const Edit &edit);
    /// Whether there is something new; what cannot be read now leaves the values as they were.
    bool load();
    void watch();

    QString m_path;
    std::chrono::milliseconds m_lockPatience;
    IniText m_text;
    QFileSystemWatcher m_watcher;
    QTimer m_settling; ///< an editor may empty a file first and fill it then
};

} // namespace kestrel
