#pragma once
#include "model/Meeting.h"
#include <QByteArray>
#include <QList>
#include <QString>
#include <vector>

namespace kestrel {

/// An events list as the calendar API writes it: invitations with HTML, eight to ten guests, about 2.4 kB an
/// event. The same on each call.
[[nodiscard]] QByteArray sampleEventsList(int events);

/// A text of `size` characters that is meant to make the search for links slow.
struct HostileText
{
    const char *name;
    QString (*make)(qsizetype size);
};
[[nodiscard]] const std::vector<HostileText> &hostileTexts();

/// Meetings of one account, ten minutes apart from `first` on.
[[nodiscard]] QList<Meeting> sampleMeetings(const QString &accountID, int count, Instant first);

} // namespace kestrel
