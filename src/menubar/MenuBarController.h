#pragma once
#include "base/Clock.h"
#include "model/Meeting.h"
#include "platform/StatusItemHost.h"
#include <QStringList>
#include <QTimer>
#include <optional>

namespace kestrel {

class AgendaPopover;
class EventStore;
class MeetState;
class Preferences;

/// Keeps the status item up to date: its symbol, the countdown beside it, its menu. Owned by app/; what it is
/// given outlives it. Main thread only.
class MenuBarController final : public QObject
{
    Q_OBJECT
public:
    MenuBarController(EventStore &store, const Preferences &preferences, const MeetState &meetState,
                      const Clock &clock, StatusItemHost &host, AgendaPopover &popover);

    /// Makes what the status item shows anew; shows it only when it is another.
    void updateTitle();
    /// What stands beside the icon; may be empty.
    [[nodiscard]] QString title() const { return m_shown ? m_shown->label : QString(); }
    /// The meeting that is counted to.
    [[nodiscard]] std::optional<Meeting> nextMeeting(Instant now) const;
    /// The accounts that the person has to sign in to again.
    void setSignedOut(const QStringList &accounts);
    void showPopover();
    void togglePopover(QPoint hint);

Q_SIGNALS:
    /// The status item shows something else.
    void updated();
    void joinRequested();
    void refreshRequested();
    void settingsRequested();
    void accountsRequested();
    void quitRequested();

private:
    [[nodiscard]] StatusItemState state(Instant now) const;
    [[nodiscard]] QString meetIndicator() const;
    void scheduleNextUpdate(Instant now);
    void runMenuEntry(const QString &id);

    EventStore &m_store;
    const Preferences &m_preferences;
    const MeetState &m_meetState;
    const Clock &m_clock;
    StatusItemHost &m_host;
    AgendaPopover &m_popover;
    QTimer m_timer;
    std::optional<StatusItemState> m_shown;
    QStringList m_signedOut;
};

} // namespace kestrel
