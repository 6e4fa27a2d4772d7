#pragma once
#include "app/AppDelegate.h"
#include "app/Desktop.h"
#include "app/Language.h"
#include "app/SelfInstaller.h"
#include "app/Verbs.h"
#include "base/Clock.h"
#include "command/CommandLine.h"
#include "command/InstancePlace.h"
#include "platform/SessionInstance.h"
#include <QCoro/QCoroTask>
#include <memory>

namespace kestrel {

class Connectivity;

/// Puts the platform behind the interfaces, and lives as long as the process. The only place that names
/// concrete platform classes.
class Application final
{
public:
    Application(const CommandLine &line, InstancePlace place, GoogleClient client, bool hasDisplay);
    ~Application();
    Application(const Application &) = delete;
    Application &operator=(const Application &) = delete;

    /// Kestrel itself, in the foreground: returns its exit code when it was asked to end.
    [[nodiscard]] int run();

    /// One verb: handed over to the running instance, or carried out here where the verb can do without one.
    [[nodiscard]] int runVerb();

private:
    /// Takes the instance's name.
    [[nodiscard]] SessionInstance::Claim claim();
    /// A verb that another process has handed over.
    [[nodiscard]] QCoro::Task<VerbResult> carriedOut(QStringList arguments);
    /// What comes first asks the person and may end it all; then everything that runs.
    QCoro::Task<void> launch();
    void makeDelegate();
    [[nodiscard]] QCoro::Task<VerbResult> verbResult();
    /// The accounts and their sign-in, without the refresh loop.
    void makeAccounts();
    void followLanguage();
    /// Another process, or the person, wrote the file.
    void followSettingsOfOthers();
    [[nodiscard]] AuthServices services();

    CommandLine m_line;
    InstancePlace m_place;
    GoogleClient m_client;
    bool m_hasDisplay;
    SystemClock m_clock;
    Language m_language;
    std::unique_ptr<SessionInstance> m_instance;
    std::unique_ptr<PreferenceStore> m_preferenceStore;
    std::unique_ptr<SecretStore> m_secrets;
    std::unique_ptr<Connectivity> m_connectivity;
    std::unique_ptr<HttpTransport> m_transport;
    std::unique_ptr<UrlOpener> m_opener;
    std::unique_ptr<AccountRegistry> m_registry; ///< only while a verb works without the environment
    std::unique_ptr<GoogleProvider> m_google; ///< likewise
    std::unique_ptr<Desktop> m_desktop; ///< only while Kestrel itself runs, as the next one
    std::unique_ptr<SelfInstaller> m_selfInstaller;
    std::unique_ptr<AppDelegate> m_delegate;
    std::unique_ptr<Verbs> m_verbs;
};

} // namespace kestrel
