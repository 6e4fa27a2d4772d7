#pragma once
#include "google/WireRecords.h"
#include "model/Meeting.h"
#include "model/MeetingLinkDetector.h"
#include <optional>

namespace kestrel {

/// Turns one calendar event into a meeting, or drops it: cancelled, all-day and timeless events are none.
class GoogleEventMapper final
{
public:
    /// What the meeting takes from its account and calendar.
    struct Origin
    {
        QString accountID;
        QString calendarID; ///< as it was asked for; may be "primary"
        std::optional<QString> calendarColorHex;
        std::optional<QString> accountEmail;
        MeetLaunchMode launchMode = MeetLaunchMode::Tab;
    };

    [[nodiscard]] std::optional<Meeting> map(const Google::Event &event, const Origin &origin) const;

private:
    MeetingLinkDetector m_detector;
};

} // namespace kestrel
