#include "settings/BrowserStatus.h"
#include "base/StartTask.h"
#include <QCoreApplication>
#include <QLocale>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace kestrel {

BrowserStatus::BrowserStatus(BrowserConnection &connection)
    : m_connection(connection)
{
    m_timer.setInterval(std::chrono::seconds(3));
    connect(&m_timer, &QTimer::timeout, this, &BrowserStatus::startAsking);
}

void BrowserStatus::retranslate()
{
    Q_EMIT changed();
}

void BrowserStatus::setActive(bool active)
{
    if (active == isActive())
        return;
    if (active) {
        m_timer.start();
        startAsking();
    } else {
        m_timer.stop();
    }
    Q_EMIT activeChanged();
}

void BrowserStatus::startAsking()
{
    if (!m_isAsking)
        startTask("browser status", ask());
}

QCoro::Task<void> BrowserStatus::ask()
{
    const QPointer self(this);
    m_isAsking = true;
    const auto state = co_await m_connection.state();
    if (!self)
        co_return;
    m_isAsking = false;
    if (m_isKnown && state == m_state)
        co_return;
    m_isKnown = true;
    m_state = state;
    Q_EMIT changed();
}

QString BrowserStatus::text() const
{
    if (!m_isKnown)
        return {};
    const QString names =
        QLocale().createSeparatedList(m_state.connected.isEmpty() ? m_state.browsers : m_state.connected);
    if (!m_state.connected.isEmpty())
        return (m_state.isScriptingOff ? qtTrId("settings.browser.scripts_off %@")
                                       : qtTrId("settings.browser.connected %@"))
            .arg(names);
    if (m_state.browsers.isEmpty())
        return qtTrId("settings.browser.none");
    return (m_state.isInstalled ? qtTrId("settings.browser.waiting %@")
                                : qtTrId("settings.browser.not_installed %@"))
        .arg(names);
}

QString BrowserStatus::symbol() const
{
    return isConnected() ? u"checkmark.circle.fill"_s : u"info.circle"_s;
}

bool BrowserStatus::isConnected() const
{
    return !m_state.connected.isEmpty() && !m_state.isScriptingOff;
}

bool BrowserStatus::canInstall() const
{
    return m_isKnown && !m_state.browsers.isEmpty() && m_state.connected.isEmpty() && !m_isInstalling;
}

QString BrowserStatus::installText() const
{
    return m_state.isInstalled ? qtTrId("settings.browser.install_again")
                               : qtTrId("settings.browser.install");
}

QString BrowserStatus::steps() const
{
    if (m_extensionFolder.isEmpty() || isConnected())
        return {};
    return qtTrId("settings.browser.steps %@").arg(m_extensionFolder);
}

void BrowserStatus::install()
{
    if (!m_isInstalling)
        startTask("browser installation", doInstall());
}

QCoro::Task<void> BrowserStatus::doInstall()
{
    const QPointer self(this);
    m_isInstalling = true;
    m_error.clear();
    Q_EMIT changed();
    const auto installed = co_await m_connection.install();
    if (!self)
        co_return;
    m_isInstalling = false;
    if (installed)
        m_extensionFolder = *installed;
    else
        m_error = installed.error();
    Q_EMIT changed();
    startAsking();
}

} // namespace kestrel
