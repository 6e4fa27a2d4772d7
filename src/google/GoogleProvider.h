#pragma once
#include "auth/GoogleOAuth.h"
#include "google/AccountRegistry.h"
#include "google/GoogleCalendarClient.h"
#include "google/GoogleEventMapper.h"
#include <QMap>
#include <QObject>
#include <map>
#include <memory>

namespace kestrel {

/// Why an account's meetings could not be had as a whole. Failures of single calendars are none: they are
/// logged, and the calendar contributes nothing.
struct FetchError
{
    enum class Kind {
        Superseded, ///< by a newer fetch, while both waited for a network: what is known stays
        AccountGone, ///< it was signed out meanwhile
    };
    Kind kind = Kind::Superseded;

    [[nodiscard]] QString description() const;
};

/// How reading an account's calendars has gone since the process started.
struct ReadHealth
{
    std::optional<Instant> lastGood; ///< when all of them were read last
    qsizetype calendars = 0; ///< that the last read went through
    qsizetype failed = 0; ///< of these
    QString failure; ///< causeOf() the first of those

    friend bool operator==(const ReadHealth &, const ReadHealth &) = default;
};

/// The one source of meetings: keeps a session per signed-in Google account. A task that is under way keeps
/// what it works with and may outlive the provider: it then ends without a trace. Only a sign-in ends with
/// the provider, since it waits for a person. Main thread only.
class GoogleProvider final : public QObject
{
    Q_OBJECT
public:
    struct Session;

    /// `CalendarAccount::providerID` of its accounts.
    static inline const QString providerID = QStringLiteral("google");

    GoogleProvider(AccountRegistry &registry, const AuthServices &services, QObject *parent = nullptr);
    ~GoogleProvider() override;

    /// The calendars last listed for each account, in the API's order.
    [[nodiscard]] const QMap<QString, QList<ProviderCalendar>> &calendarsByAccount() const
    {
        return m_calendarsByAccount;
    }
    [[nodiscard]] ReadHealth readHealth(const QString &accountID) const;
    /// The account's sign-in, created when there is none yet.
    [[nodiscard]] GoogleOAuth &oauth(const QString &accountID);

    /// A new account through the browser; it is registered when this ends.
    [[nodiscard]] QCoro::Task<std::expected<CalendarAccount, AuthError>> signIn();
    /// A registered account anew, through the browser; everything about it stays as it is. What it had to
    /// sign in with counts until the new tokens are there, whether it was still good or not.
    [[nodiscard]] QCoro::Task<std::expected<void, AuthError>> signInAgain(QString accountID);
    /// Nothing changes when the tokens cannot be deleted.
    [[nodiscard]] QCoro::Task<std::expected<void, KeychainError>> signOut(QString accountID);
    [[nodiscard]] QCoro::Task<std::expected<QList<ProviderCalendar>, CalendarFailure>>
    loadCalendars(QString accountID);
    /// The meetings of the given calendars, or of the primary one when none is given, by start. An event of
    /// two calendars is two meetings.
    [[nodiscard]] QCoro::Task<std::expected<QList<Meeting>, FetchError>>
    fetchUpcomingMeetings(QString accountID, QStringList calendarIDs, Instant from, Instant to);

Q_SIGNALS:
    void calendarsByAccountChanged();
    /// An account's refresh token was read, vanished, or can be read again.
    void signedInChanged(const QString &accountID);
    void signedInAgain(const QString &accountID);

private:
    using NewSession = std::expected<std::shared_ptr<Session>, AuthError>;

    /// The browser's way for `accountID`: signed in, or with a grant that is kept nowhere. The session is not
    /// kept yet.
    [[nodiscard]] QCoro::Task<NewSession> newSession(QString accountID, bool isKnown);
    std::shared_ptr<Session> session(const QString &accountID);
    void keep(const std::shared_ptr<Session> &session);

    AccountRegistry &m_registry;
    AuthServices m_services;
    GoogleEventMapper m_mapper;
    std::shared_ptr<PageTurns> m_turns;
    QMap<QString, QList<ProviderCalendar>> m_calendarsByAccount;
    std::map<QString, std::shared_ptr<Session>> m_sessions;
    std::map<QString, std::shared_ptr<Session>> m_signingIn;
};

} // namespace kestrel
