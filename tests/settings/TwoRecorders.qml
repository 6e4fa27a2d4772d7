import QtQuick
import Kestrel.Settings
import Kestrel.Ui

/// As they stand below each other in the settings.
Rectangle {
    id: root

    required property KeyRecording mute
    required property KeyRecording leave
    /// Keys that no control took, as a window's own shortcuts would see them.
    property int keysThatPassed: 0

    color: Theme.surface
    implicitHeight: 120
    implicitWidth: 300

    Keys.onPressed: ++root.keysThatPassed

    Column {
        anchors.centerIn: parent
        spacing: Metrics.space3

        KeyRecorder {
            label: "Mute"
            objectName: "mute"
            recorder: root.mute
        }
        KeyRecorder {
            label: "Leave"
            objectName: "leave"
            recorder: root.leave
        }
    }
}
