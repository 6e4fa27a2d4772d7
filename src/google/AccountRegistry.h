#pragma once
#include "model/CalendarAccount.h"
#include <QList>
#include <QObject>
#include <functional>
#include <optional>

namespace kestrel {

class PreferenceStore;

/// The persistent list of signed-in accounts, in the order they were added. Every edit changes the list,
/// announces it and saves in one turn. Stored data that does not decode reads as no accounts and stays until
/// the next edit. Follows the store when another process changes it. Main thread only; the store must outlive
/// it.
class AccountRegistry final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<kestrel::CalendarAccount> accounts READ accounts NOTIFY accountsChanged)
public:
    explicit AccountRegistry(PreferenceStore &preferenceStore, QObject *parent = nullptr);

    [[nodiscard]] const QList<CalendarAccount> &accounts() const { return m_accounts; }
    [[nodiscard]] QList<CalendarAccount> accounts(const QString &providerID) const;
    /// The first account with the identifier.
    [[nodiscard]] std::optional<CalendarAccount> account(const QString &id) const;

    /// Whether the list will be there at the next start: not when it could not be stored and nothing could be
    /// since.
    [[nodiscard]] bool isSaved() const { return m_isSaved; }

    void add(const CalendarAccount &account);
    void remove(const QString &id);
    /// Edits the first account with the identifier; does and saves nothing when there is none.
    void update(const QString &accountID, const std::function<void(CalendarAccount &)> &edit);

Q_SIGNALS:
    void accountsChanged();

private:
    /// Nothing when the stored data does not decode; no accounts when there is none.
    [[nodiscard]] std::optional<QList<CalendarAccount>> stored() const;
    void loadAgain();
    void announceAndSave();
    void save();

    PreferenceStore &m_preferenceStore;
    QList<CalendarAccount> m_accounts;
    bool m_isSaving = false;
    bool m_isSaved = true;
};

} // namespace kestrel
