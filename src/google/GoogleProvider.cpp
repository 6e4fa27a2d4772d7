#include "google/GoogleProvider.h"
#include "base/Log.h"
#include "google/PageTurns.h"
#include <QHash>
#include <QPointer>
#include <QSet>
#include <QUuid>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

/// One account's sign-in and the client on it. Shared with the tasks that are under way, so that a sign-out
/// takes it from under none of them.
struct GoogleProvider::Session
{
    Session(const QString &accountID, const AuthServices &services, const std::shared_ptr<PageTurns> &turns)
        : oauth(accountID, services)
        , client(oauth, services.transport, services.endpoints.calendarApi, turns)
    {
    }

    GoogleOAuth oauth;
    GoogleCalendarClient client;
    std::optional<GoogleOAuth::Grant> grant; ///< of a sign-in anew, until it is adopted
    ReadHealth health;
    /// By calendar, the causes of failures that the log tells of already. A fault that lasts is one line, not
    /// one a minute.
    QHash<QString, QSet<QString>> saidOf;
};

namespace {

const QString primaryAlias = u"primary"_s;
/// Events that are mapped before the event loop runs again.
constexpr qsizetype eventsPerTurn = 125;

/// The person's own colour for the calendar, else the provider's. Both hang on a calendar's identifier, which
/// "primary" stands for once the calendars were listed.
std::optional<QString> colorOf(const QString &calendarID, const CalendarAccount &account,
                               const QList<ProviderCalendar> &listed)
{
    const auto calendar = std::find_if(listed.begin(), listed.end(), [&](const ProviderCalendar &candidate) {
        return calendarID == primaryAlias ? candidate.isPrimary : candidate.id == calendarID;
    });
    const bool isListed = calendar != listed.end();
    const auto chosen = account.calendarColorOverrides.find(isListed ? calendar->id : calendarID);
    if (chosen != account.calendarColorOverrides.end())
        return *chosen;
    return isListed ? calendar->colorHex : std::nullopt;
}

} // namespace

QString FetchError::description() const
{
    switch (kind) {
    case Kind::Superseded:
        return u"A newer fetch took its place"_s;
    case Kind::AccountGone:
        return u"The account was signed out"_s;
    }
    Q_UNREACHABLE();
}

GoogleProvider::GoogleProvider(AccountRegistry &registry, const AuthServices &services, QObject *parent)
    : QObject(parent)
    , m_registry(registry)
    , m_services(services)
    , m_turns(std::make_shared<PageTurns>())
{
    for (const CalendarAccount &account : m_registry.accounts(providerID))
        session(account.id);
}

GoogleProvider::~GoogleProvider()
{
    // by hand, so that a sign-in that resumes for it finds itself gone
    std::exchange(m_signingIn, {}).clear();
}

ReadHealth GoogleProvider::readHealth(const QString &accountID) const
{
    const auto found = m_sessions.find(accountID);
    return found == m_sessions.end() ? ReadHealth() : found->second->health;
}

GoogleOAuth &GoogleProvider::oauth(const QString &accountID)
{
    return session(accountID)->oauth;
}

std::shared_ptr<GoogleProvider::Session> GoogleProvider::session(const QString &accountID)
{
    if (const auto found = m_sessions.find(accountID); found != m_sessions.end())
        return found->second;
    auto created = std::make_shared<Session>(accountID, m_services, m_turns);
    keep(created);
    return created;
}

void GoogleProvider::keep(const std::shared_ptr<Session> &session)
{
    const QString accountID = session->oauth.accountID();
    m_sessions.insert_or_assign(accountID, session);
    connect(&session->oauth, &GoogleOAuth::isSignedInChanged, this,
            [this, accountID] { Q_EMIT signedInChanged(accountID); });
}

QCoro::Task<GoogleProvider::NewSession> GoogleProvider::newSession(QString accountID, bool isKnown)
{
    const QPointer self(this);
    // a newer try takes the place of an older one, whose page the person has closed; that one ends here
    auto older = m_signingIn.extract(accountID);
    const auto inserted =
        m_signingIn.emplace(accountID, std::make_shared<Session>(accountID, m_services, m_turns)).first;
    Session *const session = inserted->second.get();
    older = {};
    std::optional<GoogleOAuth::Grant> grant;
    std::expected<void, AuthError> signedIn;
    if (isKnown) {
        auto given = co_await session->oauth.askForConsent();
        if (given)
            grant = std::move(*given);
        else
            signedIn = std::unexpected(given.error());
    } else {
        signedIn = co_await session->oauth.signIn();
    }
    decltype(m_signingIn)::node_type pending;
    if (self) {
        if (const auto found = m_signingIn.find(accountID);
            found != m_signingIn.end() && found->second.get() == session)
            pending = m_signingIn.extract(found);
    }
    if (!signedIn)
        co_return std::unexpected(signedIn.error());
    if (!pending)
        co_return std::unexpected(OAuthError { OAuthError::Kind::NotSignedIn, 0, {} });
    pending.mapped()->grant = std::move(grant);
    co_return pending.mapped();
}

QCoro::Task<std::expected<CalendarAccount, AuthError>> GoogleProvider::signIn()
{
    const QPointer self(this);
    const auto session =
        co_await newSession(QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper(), false);
    if (!session)
        co_return std::unexpected(session.error());
    if (!self)
        co_return std::unexpected(OAuthError { OAuthError::Kind::NotSignedIn, 0, {} });

    CalendarAccount account;
    account.id = (*session)->oauth.accountID();
    account.providerID = providerID;
    account.email = (*session)->oauth.accountEmail();
    account.displayName = u"Google Calendar"_s;
    account.meetLaunchMode = MeetLaunchMode::Popup;
    keep(*session);
    m_registry.add(account);
    co_return account;
}

QCoro::Task<std::expected<void, AuthError>> GoogleProvider::signInAgain(QString accountID)
{
    const QPointer self(this);
    const auto asked = co_await newSession(accountID, true);
    if (!asked)
        co_return std::unexpected(asked.error());
    const GoogleOAuth::Grant grant = *std::exchange((*asked)->grant, {});
    const auto account = self ? m_registry.account(accountID) : std::nullopt;
    const QString chosen = grant.email.value_or(QString());
    const QString wanted = account ? account->email.value_or(chosen) : QString();
    if (!account || (!chosen.isEmpty() && chosen.compare(wanted, Qt::CaseInsensitive) != 0)) {
        // a revocation ends all that the address has given us
        const bool isOurs =
            self && std::ranges::any_of(m_registry.accounts(), [&](const auto &each) {
                return each.email.value_or(QString()).compare(chosen, Qt::CaseInsensitive) == 0;
            });
        if (self && !isOurs)
            co_await (*asked)->oauth.revoke(grant.refreshToken.isEmpty() ? grant.accessToken.token
                                                                         : grant.refreshToken);
        co_return std::unexpected(OAuthError { OAuthError::Kind::OtherAccount, 0, chosen });
    }
    const auto session = this->session(accountID);
    if (const auto adopted = co_await session->oauth.adopt(grant); !adopted)
        co_return adopted;
    if (self)
        Q_EMIT signedInAgain(accountID);
    co_return std::expected<void, AuthError>();
}

QCoro::Task<std::expected<void, KeychainError>> GoogleProvider::signOut(QString accountID)
{
    const QPointer self(this);
    if (const auto found = m_sessions.find(accountID); found != m_sessions.end()) {
        const auto session = found->second;
        const auto signedOut = co_await session->oauth.signOut();
        if (!signedOut || !self)
            co_return signedOut;
        session->oauth.disconnect(this);
        m_sessions.erase(accountID);
    }
    const bool wasListed = m_calendarsByAccount.remove(accountID) > 0;
    m_registry.remove(accountID);
    if (wasListed)
        Q_EMIT calendarsByAccountChanged();
    co_return std::expected<void, KeychainError>();
}

QCoro::Task<std::expected<QList<ProviderCalendar>, CalendarFailure>>
GoogleProvider::loadCalendars(QString accountID)
{
    const QPointer self(this);
    const auto session = this->session(accountID);
    const auto list = co_await session->client.calendarList();
    if (!list) {
        qCCritical(lcCalendar).noquote().nospace() << "Failed listing the calendars of account " << accountID
                                                   << ": " << errorForLog(description(list.error()));
        co_return std::unexpected(list.error());
    }

    QList<ProviderCalendar> calendars;
    calendars.reserve(list->items.size());
    for (const Google::CalendarListEntry &entry : list->items)
        calendars.append({ entry.id, entry.summary, entry.primary.value_or(false), entry.backgroundColor });

    const bool isSignedOut = !self || !m_sessions.contains(accountID);
    if (!isSignedOut && m_calendarsByAccount.value(accountID) != calendars) {
        m_calendarsByAccount.insert(accountID, calendars);
        Q_EMIT calendarsByAccountChanged();
    }
    co_return calendars;
}

QCoro::Task<std::expected<QList<Meeting>, FetchError>>
GoogleProvider::fetchUpcomingMeetings(QString accountID, QStringList calendarIDs, Instant from, Instant to)
{
    const auto account = m_registry.account(accountID);
    if (!account)
        co_return std::unexpected(FetchError { FetchError::Kind::AccountGone });
    const QPointer self(this);
    const auto session = this->session(accountID);
    const auto turns = m_turns;
    const GoogleEventMapper mapper = m_mapper;
    const QList<ProviderCalendar> listed = m_calendarsByAccount.value(accountID);
    qCInfo(lcCalendar).noquote().nospace()
        << "fetchUpcomingMeetings accountID=" << accountID << " email=" << account->email.value_or(u"<nil>"_s)
        << " launchMode=" << rawValue(account->meetLaunchMode);
    if (calendarIDs.isEmpty())
        calendarIDs.append(primaryAlias);

    ReadHealth health { session->health.lastGood, calendarIDs.size(), 0, {} };
    std::multimap<Instant, Meeting> byStart; // of equal starts, the one that came first stays first
    for (const QString &calendarID : std::as_const(calendarIDs)) {
        const GoogleEventMapper::Origin origin { accountID, calendarID, colorOf(calendarID, *account, listed),
                                                 account->email, account->meetLaunchMode };
        const auto events = co_await session->client.events(calendarID, from, to);
        co_await turns->next(); // the page was decoded in the one before
        if (!self || !m_registry.account(accountID))
            co_return std::unexpected(FetchError { FetchError::Kind::AccountGone });
        if (!events) {
            if (isSuperseded(events.error()))
                co_return std::unexpected(FetchError { FetchError::Kind::Superseded });
            const QString cause = causeOf(events.error());
            QSet<QString> &said = session->saidOf[calendarID];
            // one that is signed out is so because of what was said
            if (said.isEmpty() || (!said.contains(cause) && !session->oauth.isSignedOut())) {
                said.insert(cause);
                qCCritical(lcCalendar).noquote().nospace()
                    << "Failed fetching " << Private(calendarID) << " for account " << accountID << ": "
                    << errorForLog(description(events.error()));
            }
            if (health.failed++ == 0)
                health.failure = cause;
            continue;
        }
        if (session->saidOf.remove(calendarID))
            qCInfo(lcCalendar).noquote().nospace()
                << "Fetching " << Private(calendarID) << " for account " << accountID << " works again";
        for (qsizetype i = 0; i < events->items.size(); ++i) {
            if (i > 0 && i % eventsPerTurn == 0)
                co_await turns->next();
            if (auto meeting = mapper.map(events->items[i], origin))
                byStart.emplace(meeting->start, std::move(*meeting));
        }
    }

    co_await turns->next();
    QList<Meeting> meetings;
    meetings.reserve(static_cast<qsizetype>(byStart.size()));
    for (auto &[start, meeting] : byStart)
        meetings.append(std::move(meeting));
    byStart.clear();

    co_await turns->next(); // whoever takes the meetings has work to do as well
    if (!self || !m_registry.account(accountID))
        co_return std::unexpected(FetchError { FetchError::Kind::AccountGone });
    if (health.failed == 0)
        health.lastGood = m_services.clock.now();
    session->health = health;
    co_return meetings;
}

} // namespace kestrel
