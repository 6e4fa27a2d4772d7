#include "menubar/MeetingOpener.h"
#include "base/Log.h"
#include "base/StartTask.h"
#include "google/AccountRegistry.h"
#include "model/MeetingLinkDetector.h"
#include "platform/ApplicationLookup.h"
#include "platform/HelperChannel.h"
#include "platform/Screens.h"
#include "platform/UrlOpener.h"
#include "preferences/Preferences.h"
#include <array>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// In the order in which they are looked for.
constexpr std::array chromiumBrowsers {
    "com.google.Chrome"_L1,     "com.google.Chrome.beta"_L1, "com.google.Chrome.canary"_L1,
    "org.chromium.Chromium"_L1, "com.brave.Browser"_L1,      "com.microsoft.edgemac"_L1,
};

QString hostForLog(const QUrl &url)
{
    return url.host().isEmpty() ? u"?"_s : url.host();
}

/// Works on the encoded query, so that what is not ours keeps the very characters it came with.
QUrl rewrittenForAccount(const QUrl &url, const QString &email)
{
    const QString query = url.query(QUrl::FullyEncoded);
    QStringList items = query.isEmpty() ? QStringList() : query.split(u'&');
    items.removeIf([](const QString &item) {
        return QUrl::fromPercentEncoding(item.section(u'=', 0, 0).toUtf8()) == "authuser"_L1;
    });
    // "+" would arrive as a space; an address otherwise reads as it is written
    items.append("authuser="_L1 + QString::fromLatin1(QUrl::toPercentEncoding(email, "@")));
    QUrl rewritten = url;
    rewritten.setQuery(items.join(u'&'), QUrl::StrictMode);
    return rewritten.isValid() ? rewritten : url;
}

QCoro::Task<void> openInBrowser(UrlOpener &opener, QUrl url)
{
    if (!co_await opener.open(url))
        qCCritical(lcAlerts).noquote() << "No program took the address at" << hostForLog(url);
}

QCoro::Task<void> openInAppMode(HelperChannel &helper, UrlOpener &opener, QString chrome, QUrl url,
                                QSize size)
{
    const QString address = url.toString(QUrl::FullyEncoded);
    qCInfo(lcAlerts).noquote().nospace()
        << "→ XPC openInChromeAppMode chrome=" << chrome << " url=" << address << " size=" << size.width()
        << 'x' << size.height();
    const auto reply = co_await helper.openInChromeAppMode(chrome, address, size.width(), size.height());
    if (!reply) {
        if (reply.error().kind == HelperError::Kind::NotOurProtocol)
            qCCritical(lcAlerts) << "ChromeLauncher XPC: failed to cast remote proxy";
        else
            qCCritical(lcAlerts).noquote()
                << "ChromeLauncher XPC error:" << errorForLog(reply.error().description);
        co_await openInBrowser(opener, url);
        co_return;
    }
    qCInfo(lcAlerts).noquote().nospace() << "ChromeLauncher XPC reply ok=" << reply->ok
                                         << " err=" << errorForLog(reply->error.value_or(u"<nil>"_s));
}

} // namespace

MeetingOpener::MeetingOpener(const AccountRegistry &registry, const Preferences &preferences,
                             UrlOpener &opener, const ApplicationLookup &applications, HelperChannel &helper,
                             const Screens &screens)
    : m_registry(registry)
    , m_preferences(preferences)
    , m_opener(opener)
    , m_applications(applications)
    , m_helper(helper)
    , m_screens(screens)
{
}

void MeetingOpener::open(const QUrl &url, const std::optional<QString> &authEmail, MeetLaunchMode launchMode)
{
    if (!isSafeMeetingURL(url)) {
        qCCritical(lcAlerts) << "MeetingOpener refused unsafe URL";
        return;
    }
    const MeetingPlatform platform = classifyPlatform(url);
    const bool isMeet = platform.kind() == MeetingPlatform::Kind::GoogleMeet;
    const bool named = isMeet && authEmail && !authEmail->isEmpty();
    const QUrl final = named ? rewrittenForAccount(url, *authEmail) : url;
    // only Google Meet knows how to live in a small window
    const MeetLaunchMode effective = isMeet ? launchMode : MeetLaunchMode::Tab;
    qCInfo(lcAlerts).noquote().nospace()
        << "MeetingOpener.open host=" << hostForLog(url) << " platform=" << platform.caseName()
        << " authEmail=" << authEmail.value_or(u"<nil>"_s) << " launchMode=" << rawValue(launchMode)
        << " effective=" << rawValue(effective);

    if (effective == MeetLaunchMode::Popup) {
        if (const auto chrome = findChromium()) {
            startTask("open in app mode",
                      openInAppMode(m_helper, m_opener, *chrome, final, popupWindowSize()));
            return;
        }
        qCInfo(lcAlerts) << "Popup mode requested but no Chromium installed; opening in default browser";
    } else {
        qCInfo(lcAlerts).noquote() << "Opening" << hostForLog(url) << "in default browser (tab)";
    }
    startTask("open in browser", openInBrowser(m_opener, final));
}

void MeetingOpener::openForAccount(const QUrl &url, const std::optional<QString> &accountID)
{
    const auto account = accountID ? m_registry.account(*accountID) : std::nullopt;
    if (account)
        open(url, account->email, account->meetLaunchMode);
    else
        open(url, {}, MeetLaunchMode::Tab);
}

void MeetingOpener::openExternal(const QUrl &url)
{
    startTask("open a page", openInBrowser(m_opener, url));
}

QSize MeetingOpener::popupWindowSize() const
{
    const qint64 width = m_preferences.popupWindowWidth();
    const qint64 height = m_preferences.popupWindowHeight();
    constexpr qint64 most = std::numeric_limits<int>::max();
    if (width > 0 && height > 0)
        return { static_cast<int>(std::min(width, most)), static_cast<int>(std::min(height, most)) };
    const QRect screen = m_screens.mainFrame().value_or(QRect(0, 0, 1920, 1080));
    return { std::min(screen.width() - 100, 1000), screen.height() >= 1440 ? screen.height() / 4 : 360 };
}

std::optional<QString> MeetingOpener::findChromium() const
{
    for (const QLatin1StringView browser : chromiumBrowsers) {
        if (auto location = m_applications.locationOf(browser))
            return location;
    }
    return {};
}

} // namespace kestrel
