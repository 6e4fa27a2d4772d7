#pragma once
#include "platform/StatusItemHost.h"
#include "platform/linux/SniStatusItemHost.h"
#include "platform/linux/XEmbedStatusItem.h"
#include <QTimer>
#include <chrono>
#include <memory>
#include <optional>

namespace kestrel {

/// The status item on whatever the desktop has for it: a StatusNotifierItem wherever a panel takes one, else
/// a window in an XEmbed tray, else a message that says once what helps. Panels may come and go at any time.
/// Main thread only; `appearance` outlives it.
class DesktopStatusItemHost final : public StatusItemHost
{
    Q_OBJECT
public:
    struct Patience
    {
        std::chrono::milliseconds untilXEmbed { std::chrono::seconds(3) };
        std::chrono::milliseconds untilMessage { std::chrono::seconds(10) };
    };

    DesktopStatusItemHost(const Appearance &appearance, Patience patience);

    void show(const StatusItemState &state) override;
    [[nodiscard]] StatusItemCondition condition() const override;

private:
    void chooseAgain();
    void fallBack();
    void giveUp();

    const Appearance &m_appearance;
    std::unique_ptr<SniStatusItemHost> m_sni;
    std::unique_ptr<XEmbedStatusItem> m_xembed;
    std::optional<StatusItemState> m_state;
    QTimer m_untilXEmbed;
    QTimer m_untilMessage;
};

[[nodiscard]] std::unique_ptr<StatusItemHost> makeStatusItemHost(const Appearance &appearance);

} // namespace kestrel
