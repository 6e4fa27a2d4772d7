#pragma once
#include "base/Instant.h"
#include <QObject>
#include <QStringList>
#include <optional>

namespace kestrel {

/// What the agenda knows of the refresh loop.
class RefreshControl : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    [[nodiscard]] virtual bool isRefreshing() const = 0;
    /// When the last refresh finished.
    [[nodiscard]] virtual std::optional<Instant> lastRefresh() const = 0;
    /// Starts a refresh and returns at once.
    virtual void startRefresh() = 0;
    /// What the accounts are called that cannot be refreshed before their person has signed in again.
    [[nodiscard]] virtual QStringList signedOutAccounts() const { return {}; }

Q_SIGNALS:
    void signedOutAccountsChanged();
    void isRefreshingChanged();
    void lastRefreshChanged();
};

} // namespace kestrel
