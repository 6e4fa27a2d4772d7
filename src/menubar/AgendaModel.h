#pragma once
#include "menubar/MeetingListModel.h"
#include <QTimer>

namespace kestrel {

class AccountRegistry;
class EventStore;
class Preferences;
class RefreshControl;

/// What the agenda shows: today's meetings by section, every text made. Reads the clock every half minute and
/// follows what it is given, but only while it is active, that is while somebody can see it. Owned by app/;
/// what it is given outlives it. Main thread only.
class AgendaModel final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("app/ makes it")
    Q_PROPERTY(QString dateText READ dateText NOTIFY changed)
    Q_PROPERTY(bool hasAccounts READ hasAccounts NOTIFY changed)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY changed)
    Q_PROPERTY(kestrel::MeetingListModel *cards READ cards CONSTANT)
    Q_PROPERTY(kestrel::MeetingListModel *laterToday READ laterToday CONSTANT)
    Q_PROPERTY(int laterTodayHeight READ laterTodayHeight NOTIFY changed)
    Q_PROPERTY(QString refreshToolTip READ refreshToolTip NOTIFY changed)
    Q_PROPERTY(bool isRefreshing READ isRefreshing NOTIFY changed)
    Q_PROPERTY(QString signedOutText READ signedOutText NOTIFY changed)
public:
    AgendaModel(EventStore &store, AccountRegistry &registry, Preferences &preferences,
                RefreshControl &refreshControl, MeetingOpener &opener, const Clock &clock);

    /// Becoming active brings everything up to date at once.
    void setActive(bool active);
    [[nodiscard]] bool isActive() const { return m_timer.isActive(); }
    /// The time is another one than its own clock would have come to by now.
    void evaluateIfActive();
    /// The language or the locale is another one.
    void retranslate();

    [[nodiscard]] QString dateText() const { return m_dateText; }
    [[nodiscard]] bool hasAccounts() const;
    /// Nothing comes next, today or later.
    [[nodiscard]] bool isEmpty() const { return m_isEmpty; }
    /// The meetings in progress, then the ones that come next.
    [[nodiscard]] MeetingListModel *cards() { return &m_cards; }
    [[nodiscard]] MeetingListModel *laterToday() { return &m_laterToday; }
    /// How high its scroll area may be, in pixels.
    [[nodiscard]] int laterTodayHeight() const;
    [[nodiscard]] QString refreshToolTip() const;
    [[nodiscard]] bool isRefreshing() const;
    /// Whose meetings are missing until the person signs in again; empty when nobody's are.
    [[nodiscard]] QString signedOutText() const;

    Q_INVOKABLE void openAccounts();
    Q_INVOKABLE void refresh();
    Q_INVOKABLE void openSettings();
    Q_INVOKABLE void quit();

Q_SIGNALS:
    void changed();
    void settingsRequested();
    void accountsRequested();
    void quitRequested();

private:
    void evaluate();

    EventStore &m_store;
    AccountRegistry &m_registry;
    Preferences &m_preferences;
    RefreshControl &m_refreshControl;
    const Clock &m_clock;
    MeetingListModel m_cards;
    MeetingListModel m_laterToday;
    QTimer m_timer;
    QString m_dateText;
    bool m_isEmpty = true;
};

} // namespace kestrel
