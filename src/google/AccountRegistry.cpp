#include "google/AccountRegistry.h"
#include "platform/PreferenceStore.h"
#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const QString defaultsKey = u"registeredAccounts.v1"_s;

} // namespace

AccountRegistry::AccountRegistry(PreferenceStore &preferenceStore, QObject *parent)
    : QObject(parent)
    , m_preferenceStore(preferenceStore)
    , m_accounts(stored().value_or(QList<CalendarAccount>()))
{
    connect(&m_preferenceStore, &PreferenceStore::changedElsewhere, this, &AccountRegistry::loadAgain);
    connect(&m_preferenceStore, &PreferenceStore::writeFailed, this,
            [this] { m_isSaved = m_isSaved && !m_isSaving; });
    connect(&m_preferenceStore, &PreferenceStore::stored, this, [this] {
        if (!m_isSaved && !m_isSaving)
            save();
    });
}

QList<CalendarAccount> AccountRegistry::accounts(const QString &providerID) const
{
    QList<CalendarAccount> matching;
    std::copy_if(m_accounts.begin(), m_accounts.end(), std::back_inserter(matching),
                 [&](const CalendarAccount &account) { return account.providerID == providerID; });
    return matching;
}

std::optional<CalendarAccount> AccountRegistry::account(const QString &id) const
{
    const auto found = std::find_if(m_accounts.begin(), m_accounts.end(),
                                    [&](const CalendarAccount &account) { return account.id == id; });
    return found == m_accounts.end() ? std::nullopt : std::optional(*found);
}

void AccountRegistry::add(const CalendarAccount &account)
{
    m_accounts.append(account);
    announceAndSave();
}

void AccountRegistry::remove(const QString &id)
{
    m_accounts.removeIf([&](const CalendarAccount &account) { return account.id == id; });
    announceAndSave();
}

void AccountRegistry::update(const QString &accountID, const std::function<void(CalendarAccount &)> &edit)
{
    const auto found = std::find_if(m_accounts.begin(), m_accounts.end(),
                                    [&](const CalendarAccount &account) { return account.id == accountID; });
    if (found == m_accounts.end())
        return;
    edit(*found);
    announceAndSave();
}

std::optional<QList<CalendarAccount>> AccountRegistry::stored() const
{
    const auto bytes = m_preferenceStore.data(defaultsKey);
    if (!bytes)
        return QList<CalendarAccount>();
    const QJsonDocument document = QJsonDocument::fromJson(*bytes);
    if (!document.isArray())
        return {};

    QList<CalendarAccount> accounts;
    for (const auto &value : document.array()) {
        auto account = value.isObject() ? CalendarAccount::fromJson(value.toObject())
                                        : std::unexpected(DecodingError { u"not an object"_s });
        if (!account)
            return {};
        accounts.append(std::move(*account));
    }
    return accounts;
}

// What another process left unreadable is no reason to drop the accounts of a running one.
void AccountRegistry::loadAgain()
{
    auto accounts = stored();
    if (!accounts || *accounts == m_accounts)
        return;
    m_accounts = std::move(*accounts);
    Q_EMIT accountsChanged();
}

void AccountRegistry::announceAndSave()
{
    Q_EMIT accountsChanged();
    save();
}

void AccountRegistry::save()
{
    QJsonArray array;
    for (const CalendarAccount &account : std::as_const(m_accounts))
        array.append(account.toJson());
    m_isSaving = m_isSaved = true;
    m_preferenceStore.setData(defaultsKey, QJsonDocument(array).toJson(QJsonDocument::Compact));
    m_isSaving = false;
}

} // namespace kestrel
