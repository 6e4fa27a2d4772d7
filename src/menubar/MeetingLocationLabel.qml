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

    contentItem: Item {
        implicitWidth: symbol.width + Metrics.space1 + label.implicitWidth
        implicitHeight: Math.max(symbol.height, label.implicitHeight)

        Symbol {
            id: symbol

            anchors.verticalCenter: parent.verticalCenter
            name: "mappin.and.ellipse"
            size: 11
            color: Theme.secondaryText
        }
        PlainLabel {
            id: label

            anchors.verticalCenter: parent.verticalCenter
            anchors.left: symbol.right
            anchors.leftMargin: Metrics.space1
            anchors.right: parent.right
            text: root.item.location
            size: Metrics.textSmall
            rounded: true
            color: Theme.secondaryText
            maximumLineCount: 1
        }
    }
}
