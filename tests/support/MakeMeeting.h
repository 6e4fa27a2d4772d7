#pragma once
#include "model/Meeting.h"

namespace kestrel {

/// Named after its identifier, and nothing else.
inline Meeting makeMeeting(const QString &id, Instant start, Instant end,
                           const QString &accountID = QStringLiteral("A"))
{
    Meeting meeting;
    meeting.id = id;
    meeting.accountID = accountID;
    meeting.title = id;
    meeting.start = start;
    meeting.end = end;
    return meeting;
}

} // namespace kestrel
