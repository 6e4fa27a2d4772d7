#include "settings/AccountsModel.h"
#include "base/StartTask.h"
#include "google/AccountRegistry.h"
#include "google/GoogleProvider.h"
#include <QPointer>
#include <algorithm>
#include <utility>

namespace kestrel {

AccountsModel::AccountsModel(AccountRegistry &registry, GoogleProvider &google, Preferences &preferences,
                             RefreshControl &refreshControl, QString missingClient)
    : m_registry(registry)
    , m_google(google)
    , m_preferences(preferences)
    , m_refreshControl(refreshControl)
    , m_missingClient(std::move(missingClient))
{
    connect(&registry, &AccountRegistry::accountsChanged, this, &AccountsModel::followRegistry);
    followRegistry();
}

void AccountsModel::retranslate()
{
    for (AccountItem *item : std::as_const(m_items))
        item->retranslate();
}

/// Rows stay as long as their accounts do: whoever works in one is not thrown out of it.
void AccountsModel::followRegistry()
{
    const QList<CalendarAccount> &accounts = m_registry.accounts();
    const auto isAt = [&](const CalendarAccount &account, int row) {
        return row < m_items.size() && m_items.at(row)->account().id == account.id;
    };
    for (int row = 0; row < accounts.size(); ++row) {
        const CalendarAccount &account = accounts.at(row);
        const auto isListedLater = [&](const AccountItem *item) {
            return std::any_of(accounts.begin() + row, accounts.end(), [item](const CalendarAccount &later) {
                return later.id == item->account().id;
            });
        };
        while (!isAt(account, row) && row < m_items.size() && !isListedLater(m_items.at(row)))
            removeAt(row);
        if (isAt(account, row)) {
            m_items.at(row)->setAccount(account);
            continue;
        }
        beginInsertRows({}, row, row);
        m_items.insert(row,
                       new AccountItem(account, m_registry, m_google, m_preferences, m_refreshControl, this));
        endInsertRows();
    }
    while (m_items.size() > accounts.size())
        removeAt(static_cast<int>(m_items.size()) - 1);
    Q_EMIT changed();
}

void AccountsModel::removeAt(int row)
{
    beginRemoveRows({}, row, row);
    // its row may be drawn once more before it goes
    m_items.takeAt(row)->deleteLater();
    endRemoveRows();
}

void AccountsModel::addGoogle()
{
    if (m_isBusy)
        return;
    if (m_missingClient.isEmpty()) {
        startTask("sign-in", signIn());
        return;
    }
    m_error = m_missingClient;
    Q_EMIT changed();
}

QCoro::Task<void> AccountsModel::signIn()
{
    const QPointer self(this);
    m_isBusy = true;
    m_error.clear();
    Q_EMIT changed();
    const auto account = co_await m_google.signIn();
    if (!self)
        co_return;
    m_isBusy = false;
    if (!account)
        m_error = description(account.error());
    Q_EMIT changed();
}

int AccountsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_items.size());
}

QVariant AccountsModel::data(const QModelIndex &index, int /*role*/) const
{
    return QVariant::fromValue(m_items.at(index.row()));
}

QHash<int, QByteArray> AccountsModel::roleNames() const
{
    return { { Qt::UserRole, "item" } };
}

} // namespace kestrel
