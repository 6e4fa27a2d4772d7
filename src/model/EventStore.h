#pragma once
#include "base/Clock.h"
#include "model/Meeting.h"
#include <QList>
#include <QObject>
#include <QTimer>
#include <optional>

namespace kestrel {

/// The one list of upcoming meetings that everything on screen reads. Written only by the refresh loop.
/// Queries without a `now` read the clock once. Main thread only; the clock must outlive it.
class EventStore final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<kestrel::Meeting> upcoming READ upcoming NOTIFY upcomingChanged)
public:
    explicit EventStore(const Clock &clock, QObject *parent = nullptr);

    /// All accounts' meetings by start; of equal starts the one that was there first comes first.
    [[nodiscard]] const QList<Meeting> &upcoming() const { return m_upcoming; }

    /// Replaces one account's meetings; drops cancelled ones, and all that ended an hour ago or earlier.
    void replace(const QString &accountID, const QList<Meeting> &meetings);
    void clear();
    void removeMeetings(const QString &accountID);

    /// Running meetings, the first to end first.
    [[nodiscard]] QList<Meeting> ongoing(std::optional<Instant> now = {}) const;
    /// The earliest future start and all that start within `tolerance` seconds of it.
    [[nodiscard]] QList<Meeting> nextUp(std::optional<Instant> now = {}, double tolerance = 0) const;
    /// What starts on the calendar day of `now` in the user's time zone.
    [[nodiscard]] QList<Meeting> today(std::optional<Instant> now = {}) const;

Q_SIGNALS:
    void upcomingChanged();

private:
    void freeSomeReplaced();

    const Clock &m_clock;
    QList<Meeting> m_upcoming;
    /// What replace() took out. Freeing a thousand meetings with their guests takes milliseconds, so it is
    /// done a little at a time.
    QList<Meeting> m_replaced;
    QTimer m_freeing;
};

} // namespace kestrel
