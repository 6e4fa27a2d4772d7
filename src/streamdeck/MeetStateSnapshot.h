#pragma once

namespace kestrel {

class MeetState;

/// The state of the call as a value. By default what holds where nobody knows of a call.
struct MeetStateSnapshot
{
    bool inMeeting = false;
    bool micOn = true;
    bool cameraOn = true;
    bool handRaised = false;
    bool sharing = false;

    [[nodiscard]] static MeetStateSnapshot of(const MeetState &state);

    friend bool operator==(const MeetStateSnapshot &, const MeetStateSnapshot &) = default;
};

} // namespace kestrel
