import QtQuick
import Kestrel.Ui

/// One calendar: its colour and name, and whether its meetings are read.
Item {
    id: root

    required property int index
    required property string title
    required property bool isPrimary
    required property bool isSelected
    required property string googleHex
    required property string overrideHex

    signal toggled(on: bool)
    /// Empty: its own colour again.
    signal colorPicked(hex: string)

    implicitHeight: 36

    MouseArea {
        anchors.fill: parent
        onClicked: toggle.flip()
    }
    CalendarStripe {
        id: stripe

        anchors.verticalCenter: parent.verticalCenter
        colorHex: root.overrideHex !== "" ? root.overrideHex : root.googleHex
        fallback: Theme.secondaryText
        height: 20
        width: 4
        x: Metrics.space7 + Metrics.space2
    }
    PlainLabel {
        id: name

        anchors.left: stripe.right
        anchors.leftMargin: Metrics.space2
        anchors.verticalCenter: parent.verticalCenter
        text: root.title
        width: Math.min(implicitWidth, picker.x - x - Metrics.space3 - (tag.visible ? tag.width + Metrics.space2 : 0))
    }
    SmoothRectangle {
        id: tag

        anchors.left: name.right
        anchors.leftMargin: Metrics.space2
        anchors.verticalCenter: parent.verticalCenter
        color: Colors.faded(Theme.text, 0.07)
        height: 20
        radius: Metrics.radiusSmall
        visible: root.isPrimary
        width: word.implicitWidth + 2 * Metrics.space2

        PlainLabel {
            id: word

            anchors.centerIn: parent
            color: Theme.secondaryText
            size: Metrics.textSmall
            text: qsTrId("settings.accounts.primary")
        }
    }
    CalendarColorPicker {
        id: picker

        accessibleName: root.title + ": " + toolTip
        anchors.right: toggle.left
        anchors.rightMargin: Metrics.space3
        anchors.verticalCenter: parent.verticalCenter
        googleHex: root.googleHex
        overrideHex: root.overrideHex

        onPicked: hex => root.colorPicked(hex)
        onResetRequested: root.colorPicked("")
    }
    ToggleSwitch {
        id: toggle

        accessibleName: root.title
        anchors.right: parent.right
        anchors.rightMargin: Metrics.space4
        anchors.verticalCenter: parent.verticalCenter
        help: root.isPrimary ? qsTrId("settings.accounts.primary") : ""
        isOn: root.isSelected

        onSwitched: on => root.toggled(on)
    }
}
