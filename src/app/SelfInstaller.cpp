#include "app/SelfInstaller.h"
#include "base/AppIdentifier.h"
#include "base/Awaited.h"
#include "base/Log.h"
#include "platform/HelperChannel.h"
#include "platform/ModalNotice.h"
#include "platform/PreferenceStore.h"
#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr auto declinedKey = "selfInstaller.userDeclined.v1"_L1;

using HelperAnswer = std::expected<HelperReply, HelperError>;

/// What is shown of an error; the helper's own texts are English.
QString shownText(const SelfInstallerError &error)
{
    switch (error.kind) {
    case SelfInstallerError::Kind::XpcUnavailable:
        return qtTrId("selfInstaller.unavailable");
    case SelfInstallerError::Kind::TimedOut:
        return qtTrId("selfInstaller.timedOut");
    case SelfInstallerError::Kind::InstallFailed:
        break;
    }
    return error.description();
}

} // namespace

QString SelfInstallerError::description() const
{
    switch (kind) {
    case Kind::InstallFailed:
        return message;
    case Kind::XpcUnavailable:
        return u"The install helper isn't available."_s;
    case Kind::TimedOut:
        return u"The install took too long and was cancelled."_s;
    }
    Q_UNREACHABLE();
}

SelfInstaller::SelfInstaller(QString bundle, InstallPlaces places, ModalNotice &notice, HelperChannel &helper,
                             PreferenceStore &store, std::chrono::milliseconds patience)
    : m_bundle(std::move(bundle))
    , m_places(std::move(places))
    , m_notice(notice)
    , m_helper(helper)
    , m_store(store)
    , m_patience(patience)
{
}

bool SelfInstaller::isNeeded() const
{
    // a build tree is no Kestrel to install, wherever it lies
    return m_places.isPassing(m_bundle + u'/')
        && QFileInfo::exists(m_bundle + u"/share/applications/"_s + AppIdentifier + u".desktop"_s)
        && !m_store.boolean(declinedKey).value_or(false);
}

QCoro::Task<bool> SelfInstaller::offerIfNeeded()
{
    if (!isNeeded())
        co_return false;
    const QPointer self(this);
    const auto pressed =
        co_await m_notice.ask({ qtTrId("selfInstaller.title"),
                                qtTrId("selfInstaller.message"),
                                { qtTrId("selfInstaller.install"), qtTrId("selfInstaller.notNow") } });
    if (!self)
        co_return false;
    if (pressed != 0) {
        m_store.setBoolean(declinedKey, true);
        co_return false;
    }
    const auto installed = co_await install(m_bundle, m_places.destination);
    if (!self)
        co_return false;
    if (installed) {
        QTimer::singleShot(400ms, QCoreApplication::instance(), [] { QCoreApplication::quit(); });
        co_return true;
    }
    qCCritical(lcApp).noquote() << "SelfInstaller copy failed:"
                                << errorForLog(installed.error().description());
    co_await m_notice.ask(
        { qtTrId("selfInstaller.failed"), shownText(installed.error()), { qtTrId("selfInstaller.ok") } });
    co_return false;
}

QCoro::Task<std::expected<void, SelfInstallerError>> SelfInstaller::install(QString from, QString to)
{
    using Kind = SelfInstallerError::Kind;
    const auto answer = co_await within(m_patience, started("install", m_helper.installAppBundle(from, to)));
    if (!answer)
        co_return std::unexpected(SelfInstallerError { Kind::TimedOut });
    const HelperAnswer &reply = *answer;
    if (!reply) {
        if (reply.error().kind != HelperError::Kind::Unreachable)
            co_return std::unexpected(SelfInstallerError { Kind::XpcUnavailable });
        co_return std::unexpected(SelfInstallerError {
            Kind::InstallFailed, u"D-Bus connection error: %1"_s.arg(reply.error().description) });
    }
    if (!reply->ok) {
        co_return std::unexpected(
            SelfInstallerError { Kind::InstallFailed, reply->error.value_or(u"Unknown error"_s) });
    }
    co_return {};
}

} // namespace kestrel
