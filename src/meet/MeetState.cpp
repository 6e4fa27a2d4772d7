#include "meet/MeetState.h"

namespace kestrel {

void MeetState::setInMeeting(bool inMeeting)
{
    set(m_inMeeting, inMeeting, &MeetState::inMeetingChanged);
}

void MeetState::setMicOn(bool on)
{
    set(m_micOn, on, &MeetState::micOnChanged);
}

void MeetState::setCameraOn(bool on)
{
    set(m_cameraOn, on, &MeetState::cameraOnChanged);
}

void MeetState::setHandRaised(bool raised)
{
    set(m_handRaised, raised, &MeetState::handRaisedChanged);
}

void MeetState::setSharing(bool sharing)
{
    set(m_sharing, sharing, &MeetState::sharingChanged);
}

void MeetState::set(bool &field, bool value, void (MeetState::*changed)())
{
    if (field == value)
        return;
    field = value;
    Q_EMIT(this->*changed)();
}

} // namespace kestrel
