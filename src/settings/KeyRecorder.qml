pragma ComponentBehavior: Bound

import QtQuick
import Kestrel.Settings
import Kestrel.Ui

/// Shows a shortcut, and records the next one that is typed after a click, Space or Enter.
Pressable {
    id: root

    required property KeyRecording recorder
    /// What the shortcut does, for those who cannot see what stands beside it.
    required property string label
    readonly property bool isRecording: recorder.recording
    readonly property bool isTypedInto: Window.active && visible

    Accessible.description: recorder.text
    Accessible.role: Accessible.Button
    accessibleName: label
    implicitHeight: 32
    implicitWidth: Math.max(144, implicitContentWidth + leftPadding + rightPadding)
    leftPadding: Metrics.space1
    radius: Metrics.radiusControl
    rightPadding: Metrics.space1
    toolTip: recorder.keyCaps.length > 0 && !isRecording ? recorder.text : ""

    Component.onDestruction: recorder.stop()
    onClicked: recorder.tap()
    onIsTypedIntoChanged: if (!isTypedInto)
        recorder.stop()
    onPressedChanged: recorder.setHeld(pressed)

    background: Rectangle {
        border.color: root.isRecording ? Theme.accent : Theme.hairline
        border.width: root.isRecording ? 2 : 1
        color: root.isRecording ? Qt.alpha(Theme.accent, 0.12) : root.hovered ? Theme.hairline : "transparent"
        radius: root.radius
    }
    contentItem: Item {
        implicitWidth: caps.visible ? caps.implicitWidth : words.implicitWidth + Metrics.space2 * 2

        Row {
            id: caps

            anchors.centerIn: parent
            spacing: Metrics.space1
            visible: !root.isRecording && root.recorder.keyCaps.length > 0

            Repeater {
                model: root.recorder.keyCaps

                KeyCap {
                    required property string modelData

                    label: modelData
                }
            }
        }
        PlainLabel {
            id: words

            Accessible.ignored: true
            anchors.centerIn: parent
            color: root.isRecording ? Theme.text : Theme.secondaryText
            text: root.recorder.text
            visible: !caps.visible
            weight: root.isRecording ? Font.DemiBold : Font.Normal
        }
    }
}
