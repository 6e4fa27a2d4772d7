#pragma once
#include "platform/BrowserConnection.h"
#include "platform/linux/BrowserSetup.h"

namespace kestrel {

/// What `browser install` and `browser status` know, for the settings. Works on threads of its own, since it
/// waits for relays and disks.
class SetupBrowserConnection final : public BrowserConnection
{
public:
    explicit SetupBrowserConnection(BrowserPlaces places);

    [[nodiscard]] QCoro::Task<BrowserConnectionState> state() override;
    [[nodiscard]] QCoro::Task<std::expected<QString, QString>> install() override;

private:
    BrowserPlaces m_places;
};

} // namespace kestrel
