#pragma once
#include "helper/BrowserRoute.h"

namespace kestrel {

/// Through our extension in the person's everyday profile.
class ExtensionRoute final : public BrowserRoute
{
    Q_OBJECT
public:
    using BrowserRoute::BrowserRoute;

    [[nodiscard]] QCoro::Task<FoundTab> find(QString marker) override;
    [[nodiscard]] QCoro::Task<RunAnswer> run(QString tab, QString marker, QString source,
                                             bool activate) override;
    [[nodiscard]] QCoro::Task<CloseAnswer> close(QString tab, QString marker) override;
    /// A window without tabs of exactly that size.
    [[nodiscard]] QCoro::Task<std::expected<void, QString>> open(QUrl url, QSize size);
};

} // namespace kestrel
