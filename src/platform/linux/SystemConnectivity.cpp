#include "platform/linux/SystemConnectivity.h"
#include <QNetworkInformation>

namespace kestrel {

namespace {

bool readReachability()
{
    const auto *information = QNetworkInformation::instance();
    if (!information)
        return true;
    switch (information->reachability()) {
    case QNetworkInformation::Reachability::Disconnected:
    case QNetworkInformation::Reachability::Local:
        return false;
    // Site is what a captive portal or a network without the desktop's own test page looks like: worth a try
    case QNetworkInformation::Reachability::Site:
    case QNetworkInformation::Reachability::Online:
    case QNetworkInformation::Reachability::Unknown:
        break;
    }
    return true;
}

} // namespace

bool SystemConnectivity::isOnline() const
{
    if (!m_isLoaded) {
        m_isLoaded = true;
        if (QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability)) {
            connect(QNetworkInformation::instance(), &QNetworkInformation::reachabilityChanged, this,
                    &SystemConnectivity::follow);
        }
        m_wasOnline = readReachability();
    }
    return readReachability();
}

void SystemConnectivity::follow()
{
    const bool isOnlineNow = readReachability();
    if (isOnlineNow == m_wasOnline)
        return;
    m_wasOnline = isOnlineNow;
    Q_EMIT isOnlineChanged();
}

} // namespace kestrel
