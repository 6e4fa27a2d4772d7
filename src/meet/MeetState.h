#pragma once
#include <QObject>

namespace kestrel {

/// The state of the Google Meet call as last seen in the browser. One object, read by many; only the Meet
/// controls write it. Main thread only.
class MeetState final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool inMeeting READ inMeeting WRITE setInMeeting NOTIFY inMeetingChanged)
    Q_PROPERTY(bool micOn READ micOn WRITE setMicOn NOTIFY micOnChanged)
    Q_PROPERTY(bool cameraOn READ cameraOn WRITE setCameraOn NOTIFY cameraOnChanged)
    Q_PROPERTY(bool handRaised READ handRaised WRITE setHandRaised NOTIFY handRaisedChanged)
    Q_PROPERTY(bool sharing READ sharing WRITE setSharing NOTIFY sharingChanged)
public:
    using QObject::QObject;

    [[nodiscard]] bool inMeeting() const { return m_inMeeting; }
    [[nodiscard]] bool micOn() const { return m_micOn; }
    [[nodiscard]] bool cameraOn() const { return m_cameraOn; }
    [[nodiscard]] bool handRaised() const { return m_handRaised; }
    [[nodiscard]] bool sharing() const { return m_sharing; }

    void setInMeeting(bool inMeeting);
    void setMicOn(bool on);
    void setCameraOn(bool on);
    void setHandRaised(bool raised);
    void setSharing(bool sharing);

Q_SIGNALS:
    void inMeetingChanged();
    void micOnChanged();
    void cameraOnChanged();
    void handRaisedChanged();
    void sharingChanged();

private:
    void set(bool &field, bool value, void (MeetState::*changed)());

    bool m_inMeeting = false;
    bool m_micOn = true;
    bool m_cameraOn = true;
    bool m_handRaised = false;
    bool m_sharing = false;
};

} // namespace kestrel
