#include "app/Application.h"
#include "app/GoogleClientFile.h"
#include "app/TerminationSignals.h"
#include "base/Log.h"
#include "base/StartTask.h"
#include "command/HandOver.h"
#include "platform/Screens.h"
#include "platform/linux/DBusSessionInstance.h"
#include "platform/linux/DesktopUrlOpener.h"
#include "platform/linux/FileSecretStore.h"
#include "platform/linux/IniPreferenceStore.h"
#include "platform/linux/QtHttpTransport.h"
#include "platform/linux/SecretServiceStore.h"
#include "platform/linux/SystemConnectivity.h"
#include "preferences/Preferences.h"
#include <QCoreApplication>
#include <QPointer>
#include <QThread>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const auto noBusMessage =
    u"Kestrel needs a session bus (D-Bus), and there is none here. In a bare shell: dbus-run-session -- kestrel"_s;

std::unique_ptr<SecretStore> makeSecretStore(const QString &kind, const InstancePlace &place)
{
    if (kind == "file"_L1)
        return std::make_unique<FileSecretStore>(place.secretsFile);
    return std::make_unique<SecretServiceStore>();
}

const auto busyMessage = u"Kestrel is just starting or ending; try again in a moment."_s;

bool isStart(const QStringList &arguments)
{
    return arguments.value(0).isEmpty();
}

QCoro::Task<VerbResult> answered(VerbResult result)
{
    co_return result;
}

} // namespace

Application::Application(const CommandLine &line, InstancePlace place, GoogleClient client, bool hasDisplay)
    : m_line(line)
    , m_place(std::move(place))
    , m_client(std::move(client))
    , m_hasDisplay(hasDisplay)
    , m_instance(std::make_unique<DBusSessionInstance>(m_place.busName))
    , m_preferenceStore(std::make_unique<IniPreferenceStore>(m_place.preferencesFile))
{
    if (!m_line.secretStore.isEmpty())
        m_place.startArguments += { u"--secret-store"_s, m_line.secretStore };
    m_language.apply(*m_preferenceStore);
    QObject::connect(m_preferenceStore.get(), &PreferenceStore::changedElsewhere, m_preferenceStore.get(),
                     [this] { followSettingsOfOthers(); });
    QObject::connect(m_preferenceStore.get(), &PreferenceStore::writeFailed, m_preferenceStore.get(),
                     [](const QString &path, const QString &reason) {
                         qCWarning(lcApp).noquote().nospace()
                             << "The settings could not be saved in " << path << ": " << errorForLog(reason)
                             << ". What was to be saved stays as it was.";
                     });
}

Application::~Application() = default;

void Application::followSettingsOfOthers()
{
    if (m_delegate)
        m_delegate->environment().preferences().applyLanguageOverride();
    followLanguage();
}

void Application::followLanguage()
{
    const bool isAnother = m_language.apply(*m_preferenceStore);
    if (isAnother && m_delegate)
        m_delegate->retranslate();
}

AuthServices Application::services()
{
    if (!m_secrets) {
        const QString kind = m_line.secretStore.isEmpty()
            ? m_preferenceStore->string(u"secretStore"_s).value_or(QString())
            : m_line.secretStore;
        m_secrets = makeSecretStore(kind, m_place);
        QObject::connect(m_secrets.get(), &SecretStore::trouble, m_secrets.get(),
                         [](const QString &message) { qCWarning(lcAuth).noquote() << message; });
        m_connectivity = std::make_unique<SystemConnectivity>();
        m_transport = std::make_unique<QtHttpTransport>(*m_connectivity);
        m_opener = std::make_unique<DesktopUrlOpener>();
    }
    return {
        *m_secrets, *m_transport, *m_opener, m_clock, m_place.endpoints, m_client, m_place.secretService
    };
}

void Application::makeAccounts()
{
    m_registry = std::make_unique<AccountRegistry>(*m_preferenceStore);
    m_google = std::make_unique<GoogleProvider>(*m_registry, services());
    m_verbs =
        std::make_unique<Verbs>(*m_registry, *m_google, missingClientMessage(m_place.clientFile, m_client));
}

SessionInstance::Claim Application::claim()
{
    const auto tryOnce = [this] {
        return m_instance->claim([this](QStringList arguments) { return carriedOut(std::move(arguments)); });
    };
    auto claimed = tryOnce();
    // the Kestrel that we were copied from leaves in a moment
    for (int turn = 0; turn < 150 && claimed == SessionInstance::Claim::Taken && m_line.justInstalled;
         ++turn) {
        QThread::msleep(100);
        claimed = tryOnce();
    }
    return claimed;
}

int Application::run()
{
    const auto claimed = claim();
    if (claimed == SessionInstance::Claim::Taken)
        return runVerb();
    if (claimed == SessionInstance::Claim::Unreachable)
        return printResult(failure(ExitCode::Failed, noBusMessage));

    // before the first text: somebody may have edited the file
    Preferences(*m_preferenceStore).applyLanguageOverride();
    m_language.apply(*m_preferenceStore);
    const TerminationSignals signals;
    QObject::connect(m_instance.get(), &SessionInstance::busLost, m_instance.get(), [] {
        qCCritical(lcApp) << "The session bus is gone, and Kestrel ends with it";
        QCoreApplication::exit(ExitCode::Failed);
    });
    m_desktop = Desktop::make(m_hasDisplay, m_place);
    startTask("launch", launch());
    const int exitCode = QCoreApplication::exec();
    m_selfInstaller.reset(); // before the notice, whose last question is answered when it goes
    m_verbs.reset();
    m_delegate.reset();
    return exitCode;
}

QCoro::Task<void> Application::launch()
{
    const DesktopServices desktop = m_desktop->services();
    // what nobody can see nobody has declined
    if (desktop.screens.mainVisibleFrame()) {
        m_selfInstaller = std::make_unique<SelfInstaller>(installPrefix(), m_place.install, desktop.notice,
                                                          desktop.helper, *m_preferenceStore);
        const QPointer asked(m_selfInstaller.get());
        const bool isLeaving = co_await m_selfInstaller->offerIfNeeded();
        if (!asked || isLeaving)
            co_return;
    }
    makeDelegate();
}

void Application::makeDelegate()
{
    m_delegate = std::make_unique<AppDelegate>(
        *m_preferenceStore, services(), m_desktop->services(),
        AppDelegate::Start { m_line.justInstalled, missingClientMessage(m_place.clientFile, m_client),
                             m_place.bridgePort });
    AppEnvironment &environment = m_delegate->environment();
    // in a later turn: whoever changed it is still at work with the old texts
    QObject::connect(
        &environment.preferences(), &Preferences::changed, m_delegate.get(), [this] { followLanguage(); },
        Qt::QueuedConnection);
    m_verbs = std::make_unique<Verbs>(environment.registry(), environment.google(),
                                      missingClientMessage(m_place.clientFile, m_client));
    m_verbs->setDelegate(m_delegate.get());
    // a signal that nobody listens to wakes the bus all the same
    QObject::connect(m_delegate.get(), &AppDelegate::statusChanged, m_instance.get(), [this] {
        if (m_verbs && m_verbs->isFollowed())
            m_instance->announceChange();
    });
    m_instance->announceChange(); // whoever asked while we were starting asks again
}

QCoro::Task<VerbResult> Application::carriedOut(QStringList arguments)
{
    if (m_verbs)
        return m_verbs->run(std::move(arguments));
    // whoever is quick finds the name before the rest is there, and after the rest is gone
    return isStart(arguments) ? answered({ ExitCode::Success, u"Kestrel is starting already.\n"_s, {} })
                              : answered(failure(ExitCode::NotRunning, busyMessage));
}

int Application::runVerb()
{
    return printWhenDone(verbResult());
}

QCoro::Task<VerbResult> Application::verbResult()
{
    if (m_line.verb != "accounts"_L1)
        co_return co_await handedOver(*m_instance, m_line.forHandOver());
    // Listing reads the preferences alone and works beside anything; adding and removing are the instance's
    // business.
    if (m_line.arguments[0] != "list"_L1) {
        const auto claimed = claim();
        if (claimed == SessionInstance::Claim::Taken)
            co_return co_await handedOver(*m_instance, m_line.forHandOver());
        if (claimed == SessionInstance::Claim::Unreachable)
            co_return failure(ExitCode::Failed, noBusMessage);
    }
    makeAccounts();
    co_return co_await m_verbs->run(m_line.forHandOver());
}

} // namespace kestrel
