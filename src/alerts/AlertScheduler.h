#pragma once
#include "base/Clock.h"
#include "model/Meeting.h"
#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <optional>

namespace kestrel {

class AlertPresenter;
class EventStore;
class Preferences;
class WakeTimer;

/// Keeps exactly one alert armed: the earliest that is still due, `leadTimeMinutes` before a meeting or,
/// where the person wants it, one minute before. Reads the store and never writes it. Store and presenter may
/// go first; the preferences, the clock and the timer outlive it. What was alerted is known by the meeting's
/// identifier for as long as the process runs. Main thread only.
class AlertScheduler final : public QObject
{
    Q_OBJECT
public:
    AlertScheduler(EventStore &store, AlertPresenter &presenter, Preferences &preferences, const Clock &clock,
                   WakeTimer &timer);

    /// Plans again from the store as it is now. An alert that came due in the meantime is presented rather
    /// than planned away.
    void rearm();

    struct Fire
    {
        Instant date;
        QList<Meeting> meetings; ///< all that start at the same instant, in the store's order
        bool isPrimary = true;
    };
    /// The next alerts in their order, at most `count`: the one that is armed, and what would be planned
    /// after each of them if nothing changed.
    [[nodiscard]] QList<Fire> upcomingFires(qsizetype count) const;

private:
    /// The meetings that were alerted. They are never forgotten, so that each is kept as a hash of its
    /// identifier alone: a tenth of the text's room, and among a million meetings one chance in some ten
    /// million that two have the same.
    struct Alerted
    {
        QSet<std::size_t> primary;
        QSet<std::size_t> secondary;

        static std::size_t key(const QString &id) { return qHash(id, std::size_t(0x5851f42d4c957f2d)); }
        void insert(const QString &id, bool isPrimary) { (isPrimary ? primary : secondary).insert(key(id)); }
    };
    using Groups = QMap<Instant, QList<const Meeting *>>; ///< by start

    void rearmLater();
    void rearmIfOthersAreUpcoming();
    /// The earliest alert of `groups`; of equal ones the one of the earlier group, and the primary first.
    [[nodiscard]] std::optional<Fire> earliestFire(const Groups &groups, Instant now,
                                                   const Alerted &alerted) const;
    /// What the store has that starts later than `now`.
    [[nodiscard]] Groups groupsAfter(Instant now) const;
    void presentLater();
    void presentFire(Fire fire);

    QPointer<EventStore> m_store;
    QPointer<AlertPresenter> m_presenter;
    Preferences &m_preferences;
    const Clock &m_clock;
    WakeTimer &m_timer;
    QStringList m_upcomingIDs;
    std::optional<Fire> m_armed;
    Alerted m_alerted;
};

} // namespace kestrel
