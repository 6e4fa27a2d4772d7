#pragma once
#include "command/CommandLine.h"
#include "platform/SessionInstance.h"
#include <QCoro/QCoroTask>
#include <QString>
#include <expected>

namespace kestrel {

class AccountRegistry;
class AppDelegate;
class AppEnvironment;
class GoogleProvider;

/// Carries out the verbs that need the accounts, and the running environment where there is one. What it is
/// given outlives it. Main thread only.
class Verbs final
{
public:
    /// `missingClient` is what to say instead of a sign-in that cannot work; empty when it can.
    Verbs(AccountRegistry &registry, GoogleProvider &google, QString missingClient);

    /// From now on the verbs that ask the running Kestrel work too.
    void setDelegate(AppDelegate *delegate);

    /// Somebody asked for the status in order to follow it: from then on changes are worth announcing.
    [[nodiscard]] bool isFollowed() const { return m_isFollowed; }

    /// `arguments` as CommandLine::forHandOver() makes them; whatever else comes over the bus ends as a usage
    /// error.
    [[nodiscard]] QCoro::Task<VerbResult> run(QStringList arguments);

private:
    [[nodiscard]] VerbResult agenda(bool json) const;
    [[nodiscard]] VerbResult status(const CommandLine &line) const;
    [[nodiscard]] QCoro::Task<VerbResult> refresh();
    [[nodiscard]] VerbResult join();
    [[nodiscard]] VerbResult action(const QString &name);
    [[nodiscard]] VerbResult dismiss();
    [[nodiscard]] VerbResult show();
    [[nodiscard]] VerbResult settings();
    [[nodiscard]] QCoro::Task<VerbResult> doctor(bool json, bool withTestAlert);
    [[nodiscard]] QCoro::Task<VerbResult> addAccount();
    [[nodiscard]] VerbResult listAccounts(bool json) const;
    [[nodiscard]] QCoro::Task<VerbResult> removeAccount(QString account);
    [[nodiscard]] QCoro::Task<VerbResult> signInAgain(QString account);
    /// The identifier of the one account with that identifier or address; the error is a sentence.
    [[nodiscard]] std::expected<QString, QString> accountCalled(const QString &name) const;
    /// Whose meetings are missing, and what to do; empty when nobody's are.
    [[nodiscard]] QString signedOutText() const;

    AccountRegistry &m_registry;
    GoogleProvider &m_google;
    QString m_missingClient;
    AppDelegate *m_delegate = nullptr;
    bool m_isFollowed = false;
    AppEnvironment *m_environment = nullptr; ///< the delegate's
};

/// Decodes and maps a saved calendar answer; needs no running Kestrel.
[[nodiscard]] VerbResult meetingsOfFile(const CommandLine &line);

} // namespace kestrel
