#include "streamdeck/MeetStateSnapshot.h"
#include "meet/MeetState.h"

namespace kestrel {

MeetStateSnapshot MeetStateSnapshot::of(const MeetState &state)
{
    return { state.inMeeting(), state.micOn(), state.cameraOn(), state.handRaised(), state.sharing() };
}

} // namespace kestrel
