import QtQuick
import Kestrel.Menubar
import Kestrel.Ui

/// Where the meeting is; a press looks the place up on a map.
Pressable {
    id: root

    required property MeetingItem item

    accessibleName: item.location
    toolTip: qsTrId("meeting.open_in_maps")
    padding: 0

    onClicked: root.item.openMap()

    contentItem: Row {
        spacing: Metrics.space1

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: "mappin.and.ellipse"
            size: 11
            color: Theme.secondaryText
        }
        PlainLabel {
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, root.availableWidth - 11 - Metrics.space1)
            text: root.item.location
            size: Metrics.textSmall
            rounded: true
            color: Theme.secondaryText
            maximumLineCount: 1
        }
    }
}
