#pragma once
#include "platform/SecretStore.h"
#include <QList>
#include <QSet>

namespace kestrel {

/// Secrets in a JSON file that only this user may read (0600): for those who ask for it because their desktop
/// has no secret service, and for the demo. The file is not encrypted. Every operation reads it anew, and a
/// write replaces it as a whole under a lock, so several processes may use it. A damaged file is kept as
/// `<file>.broken` before the first write; until then reading fails. Never locked, so opened() is never
/// emitted. Main thread only.
class FileSecretStore final : public SecretStore
{
    Q_OBJECT
public:
    explicit FileSecretStore(const QString &path);

    [[nodiscard]] QCoro::Task<std::expected<QByteArray, SecretStatus>> copyMatching(SecretItem item) override;
    [[nodiscard]] QCoro::Task<SecretStatus> update(SecretItem item, QByteArray data) override;
    [[nodiscard]] QCoro::Task<SecretStatus> add(SecretItem item, QByteArray data) override;
    [[nodiscard]] QCoro::Task<SecretStatus> remove(SecretItem item) override;
    [[nodiscard]] QCoro::Task<SecretStoreCondition> condition() override;

private:
    struct Entry
    {
        SecretItem item;
        QByteArray secret;
    };
    struct Content
    {
        QList<Entry> entries;
        bool isDamaged = false;
        QByteArray bytes;
    };
    enum class Change { Update, Add, Remove };

    [[nodiscard]] std::expected<Content, QString> load() const;
    [[nodiscard]] std::expected<void, QString> store(const Content &content) const;
    [[nodiscard]] SecretStatus change(Change change, const SecretItem &item, const QByteArray &secret);
    SecretStatus failed(const QString &message);
    SecretStatus failedOnDamage();

    QString m_path;
    QSet<QString> m_said;
};

} // namespace kestrel
