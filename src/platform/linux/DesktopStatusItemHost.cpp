#include "platform/linux/DesktopStatusItemHost.h"
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// What brings a tray to the desktop of this session.
QString whatHelps()
{
    // a colon-separated list: "ubuntu:GNOME"
    const bool isGnome =
        qEnvironmentVariable("XDG_CURRENT_DESKTOP").contains("gnome"_L1, Qt::CaseInsensitive);
    return isGnome ? qtTrId("tray.unavailable.gnome") : qtTrId("tray.unavailable.other");
}

} // namespace

DesktopStatusItemHost::DesktopStatusItemHost(const Appearance &appearance, Patience patience)
    : m_appearance(appearance)
{
    if (QDBusConnection::sessionBus().isConnected()) {
        m_sni = std::make_unique<SniStatusItemHost>(appearance);
        connect(m_sni.get(), &StatusItemHost::activated, this, &StatusItemHost::activated);
        connect(m_sni.get(), &StatusItemHost::menuTriggered, this, &StatusItemHost::menuTriggered);
        connect(m_sni.get(), &SniStatusItemHost::hostedChanged, this, &DesktopStatusItemHost::chooseAgain);
    }
    m_untilXEmbed.setSingleShot(true);
    m_untilXEmbed.setInterval(patience.untilXEmbed);
    connect(&m_untilXEmbed, &QTimer::timeout, this, &DesktopStatusItemHost::fallBack);
    m_untilMessage.setSingleShot(true);
    m_untilMessage.setInterval(patience.untilMessage);
    connect(&m_untilMessage, &QTimer::timeout, this, &DesktopStatusItemHost::giveUp);
}

void DesktopStatusItemHost::show(const StatusItemState &state)
{
    const bool isFirst = !m_state;
    m_state = state;
    if (m_sni)
        m_sni->show(state);
    if (m_xembed)
        m_xembed->show(state);
    if (isFirst) {
        m_untilMessage.start();
        chooseAgain();
    }
}

StatusItemCondition DesktopStatusItemHost::condition() const
{
    if (m_sni && m_sni->isHosted())
        return m_sni->condition();
    if (m_xembed && m_xembed->isDocked())
        return { StatusItemCondition::Host::Tray, {}, CountdownPlace::Icon };
    return {};
}

void DesktopStatusItemHost::chooseAgain()
{
    if (m_sni && m_sni->isHosted()) {
        m_untilXEmbed.stop();
        m_xembed.reset();
    } else if (!m_sni) {
        fallBack();
    } else {
        // a panel that is only restarting comes back sooner
        m_untilXEmbed.start();
    }
}

void DesktopStatusItemHost::fallBack()
{
    m_xembed = XEmbedStatusItem::create(m_appearance);
    if (!m_xembed)
        return;
    connect(m_xembed.get(), &XEmbedStatusItem::activated, this, &StatusItemHost::activated,
            Qt::QueuedConnection);
    m_xembed->show(*m_state);
}

void DesktopStatusItemHost::giveUp()
{
    if (condition().host == StatusItemCondition::Host::None)
        Q_EMIT unavailable(whatHelps());
}

std::unique_ptr<StatusItemHost> makeStatusItemHost(const Appearance &appearance)
{
    return std::make_unique<DesktopStatusItemHost>(appearance, DesktopStatusItemHost::Patience());
}

} // namespace kestrel
