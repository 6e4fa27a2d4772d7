import QtQuick
import Kestrel.Settings
import Kestrel.Ui

/// An action, the keys it is bound to, and the way back to those it came with.
FormRow {
    id: root

    required property ShortcutItem shortcut

    error: root.shortcut.error
    implicitHeight: error === "" ? 40 : wantedHeight
    label: root.shortcut.label

    Row {
        spacing: Metrics.space2

        KeyRecorder {
            anchors.verticalCenter: parent.verticalCenter
            label: root.shortcut.label
            recorder: root.shortcut.recorder
        }
        IconButton {
            accessibleName: toolTip + ": " + root.shortcut.label
            anchors.verticalCenter: parent.verticalCenter
            size: Metrics.textBody
            symbol: "arrow.uturn.backward"
            toolTip: qsTrId("settings.hotkey.reset")

            onClicked: root.shortcut.reset()
        }
    }
}
