#include "settings/AccountItem.h"
#include "base/StartTask.h"
#include "google/AccountRegistry.h"
#include "google/GoogleProvider.h"
#include "menubar/RefreshControl.h"
#include "preferences/Preferences.h"
#include <QCoreApplication>
#include <QPointer>
#include <algorithm>

namespace kestrel {

AccountItem::AccountItem(const CalendarAccount &account, AccountRegistry &registry, GoogleProvider &google,
                         Preferences &preferences, RefreshControl &refreshControl, QObject *parent)
    : QObject(parent)
    , m_account(account)
    , m_registry(registry)
    , m_google(google)
    , m_preferences(preferences)
    , m_refreshControl(refreshControl)
{
    m_calendars.setCalendars(google.calendarsByAccount().value(account.id));
    connect(&preferences, &Preferences::changed, this, &AccountItem::followChoices);
    connect(&google, &GoogleProvider::signedInChanged, this, &AccountItem::changed);
    followChoices();
}

void AccountItem::setAccount(const CalendarAccount &account)
{
    m_account = account;
    followChoices();
    Q_EMIT changed();
}

void AccountItem::retranslate()
{
    Q_EMIT changed();
}

void AccountItem::followChoices()
{
    m_calendars.setChoices(m_preferences.selectedCalendarIDs(m_account.id), m_account.calendarColorOverrides);
}

QString AccountItem::name() const
{
    return m_account.email.value_or(m_account.displayName);
}

QStringList AccountItem::launchModes() const
{
    return { qtTrId("settings.accounts.launch_mode.tab"), qtTrId("settings.accounts.launch_mode.popup") };
}

int AccountItem::launchMode() const
{
    return static_cast<int>(std::ranges::find(allMeetLaunchModes, m_account.meetLaunchMode)
                            - allMeetLaunchModes.begin());
}

void AccountItem::setLaunchMode(int index)
{
    m_registry.update(m_account.id, [index](CalendarAccount &account) {
        account.meetLaunchMode = allMeetLaunchModes.at(static_cast<std::size_t>(index));
    });
}

QString AccountItem::calendarsTitle() const
{
    const int count = m_calendars.rowCount();
    const QString title = qtTrId("settings.accounts.calendars");
    return count == 0 ? title : QStringLiteral("%1 (%2)").arg(title).arg(count);
}

void AccountItem::load()
{
    if (!m_isLoading)
        startTask("calendar list", loadCalendars());
}

QCoro::Task<void> AccountItem::loadCalendars()
{
    const QPointer self(this);
    m_isLoading = true;
    m_loadError.clear();
    Q_EMIT changed();
    const auto calendars = co_await m_google.loadCalendars(m_account.id);
    if (!self)
        co_return;
    if (calendars)
        m_calendars.setCalendars(*calendars);
    else
        m_loadError = description(calendars.error());
    m_isLoading = false;
    Q_EMIT changed();
}

void AccountItem::select(int row, bool selected)
{
    m_preferences.setSelectedCalendarIDs(m_calendars.selectionWith(row, selected), m_account.id);
    m_refreshControl.startRefresh();
}

void AccountItem::setColor(int row, const QString &hex)
{
    m_registry.update(m_account.id, [this, row, &hex](CalendarAccount &account) {
        const QString &calendar = m_calendars.calendars().at(row).id;
        if (hex.isEmpty())
            account.calendarColorOverrides.remove(calendar);
        else
            account.calendarColorOverrides.insert(calendar, hex);
    });
}

bool AccountItem::isSignedOut() const
{
    // not through oauth() for an account that is going
    return m_registry.account(m_account.id) && m_google.oauth(m_account.id).isSignedOut();
}

void AccountItem::signInAgain()
{
    if (!m_isSigningIn)
        startTask("sign-in", doSignInAgain());
}

QCoro::Task<void> AccountItem::doSignInAgain()
{
    const QPointer self(this);
    m_isSigningIn = true;
    m_signInError.clear();
    Q_EMIT changed();
    const auto signedIn = co_await m_google.signInAgain(m_account.id);
    if (!self)
        co_return;
    m_isSigningIn = false;
    if (!signedIn)
        m_signInError = description(signedIn.error());
    Q_EMIT changed();
    if (signedIn)
        load();
}

void AccountItem::signOut()
{
    if (!m_isSigningOut)
        startTask("sign-out", doSignOut());
}

QCoro::Task<void> AccountItem::doSignOut()
{
    const QPointer self(this);
    m_isSigningOut = true;
    m_signOutError.clear();
    Q_EMIT changed();
    const auto signedOut = co_await m_google.signOut(m_account.id);
    if (!self)
        co_return;
    m_isSigningOut = false;
    if (!signedOut)
        m_signOutError = signedOut.error().description();
    Q_EMIT changed();
}

} // namespace kestrel
