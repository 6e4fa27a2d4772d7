#pragma once
#include <QCoro/QCoroTask>
#include <QUrl>

namespace kestrel {

/// Opens addresses in the person's default browser.
class UrlOpener
{
public:
    UrlOpener() = default;
    UrlOpener(const UrlOpener &) = delete;
    UrlOpener &operator=(const UrlOpener &) = delete;
    virtual ~UrlOpener() = default;

    /// False when no program took the address.
    [[nodiscard]] virtual QCoro::Task<bool> open(QUrl url) = 0;
};

} // namespace kestrel
