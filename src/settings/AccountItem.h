#pragma once
#include "settings/CalendarChoices.h"
#include <QCoro/QCoroTask>
#include <QObject>
#include <QStringList>

namespace kestrel {

class AccountRegistry;
class GoogleProvider;
class Preferences;
class RefreshControl;

/// One account in the settings: how its meetings open, which of its calendars are read, and the way out. What
/// it is given outlives it.
class AccountItem final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the accounts' model makes it")
    Q_PROPERTY(QString name READ name NOTIFY changed)
    Q_PROPERTY(QStringList launchModes READ launchModes NOTIFY changed)
    Q_PROPERTY(int launchMode READ launchMode WRITE setLaunchMode NOTIFY changed)
    Q_PROPERTY(kestrel::CalendarChoices *calendars READ calendars CONSTANT)
    Q_PROPERTY(QString calendarsTitle READ calendarsTitle NOTIFY changed)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    Q_PROPERTY(QString loadError READ loadError NOTIFY changed)
    Q_PROPERTY(bool calendarsExpanded MEMBER m_calendarsExpanded NOTIFY calendarsExpandedChanged)
    Q_PROPERTY(bool isSignedOut READ isSignedOut NOTIFY changed)
    Q_PROPERTY(bool isSigningIn READ isSigningIn NOTIFY changed)
    Q_PROPERTY(QString signInError READ signInError NOTIFY changed)
    Q_PROPERTY(bool isSigningOut READ isSigningOut NOTIFY changed)
    Q_PROPERTY(QString signOutError READ signOutError NOTIFY changed)
public:
    AccountItem(const CalendarAccount &account, AccountRegistry &registry, GoogleProvider &google,
                Preferences &preferences, RefreshControl &refreshControl, QObject *parent);

    [[nodiscard]] const CalendarAccount &account() const { return m_account; }
    void setAccount(const CalendarAccount &account);
    void retranslate();

    /// The e-mail address, else what the account is called.
    [[nodiscard]] QString name() const;
    [[nodiscard]] QStringList launchModes() const;
    [[nodiscard]] int launchMode() const;
    void setLaunchMode(int index);
    [[nodiscard]] CalendarChoices *calendars() { return &m_calendars; }
    /// "Calendars (3)"; without the number until they are known.
    [[nodiscard]] QString calendarsTitle() const;
    [[nodiscard]] bool isLoading() const { return m_isLoading; }
    [[nodiscard]] QString loadError() const { return m_loadError; }
    /// The sign-in has ended, and nothing is read until there is a new one.
    [[nodiscard]] bool isSignedOut() const;
    [[nodiscard]] bool isSigningIn() const { return m_isSigningIn; }
    /// Of the last try; empty when it did not fail.
    [[nodiscard]] QString signInError() const { return m_signInError; }
    [[nodiscard]] bool isSigningOut() const { return m_isSigningOut; }
    /// Of the last try; empty when it did not fail.
    [[nodiscard]] QString signOutError() const { return m_signOutError; }

    /// Reads the account's calendars anew.
    Q_INVOKABLE void load();
    Q_INVOKABLE void select(int row, bool selected);
    /// An empty text gives the calendar its own colour back.
    Q_INVOKABLE void setColor(int row, const QString &hex);
    Q_INVOKABLE void signInAgain();
    Q_INVOKABLE void signOut();

Q_SIGNALS:
    void changed();
    void calendarsExpandedChanged();

private:
    void followChoices();
    [[nodiscard]] QCoro::Task<void> loadCalendars();
    [[nodiscard]] QCoro::Task<void> doSignInAgain();
    [[nodiscard]] QCoro::Task<void> doSignOut();

    CalendarAccount m_account;
    AccountRegistry &m_registry;
    GoogleProvider &m_google;
    Preferences &m_preferences;
    RefreshControl &m_refreshControl;
    CalendarChoices m_calendars;
    QString m_loadError;
    QString m_signInError;
    QString m_signOutError;
    bool m_isLoading = false;
    bool m_isSigningIn = false;
    bool m_isSigningOut = false;
    bool m_calendarsExpanded = false;
};

} // namespace kestrel
