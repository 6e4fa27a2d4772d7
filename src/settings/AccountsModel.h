#pragma once
#include "settings/AccountItem.h"
#include <QAbstractListModel>

namespace kestrel {

/// The registered accounts, each as an AccountItem that stays as long as its account, and the way to a new
/// one. What it is given outlives it.
class AccountsModel final : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the settings' model makes it")
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY changed)
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
public:
    /// `missingClient` is what to say instead of a sign-in that cannot work; empty when it can.
    AccountsModel(AccountRegistry &registry, GoogleProvider &google, Preferences &preferences,
                  RefreshControl &refreshControl, QString missingClient);

    void retranslate();

    [[nodiscard]] bool isEmpty() const { return m_items.isEmpty(); }
    /// A sign-in that was started here is under way.
    [[nodiscard]] bool isBusy() const { return m_isBusy; }
    /// Of the last sign-in; empty when it did not fail.
    [[nodiscard]] QString error() const { return m_error; }

    /// Opens Google's consent page in the browser.
    Q_INVOKABLE void addGoogle();

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    /// The account's item, in any role.
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void changed();

private:
    void followRegistry();
    void removeAt(int row);
    [[nodiscard]] QCoro::Task<void> signIn();

    AccountRegistry &m_registry;
    GoogleProvider &m_google;
    Preferences &m_preferences;
    RefreshControl &m_refreshControl;
    QString m_missingClient;
    QList<AccountItem *> m_items;
    QString m_error;
    bool m_isBusy = false;
};

} // namespace kestrel
