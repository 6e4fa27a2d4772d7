#pragma once
#include "base/Instant.h"
#include <QObject>
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

Q_SIGNALS:
    void isRefreshingChanged();
    void lastRefreshChanged();
};

} // namespace kestrel
