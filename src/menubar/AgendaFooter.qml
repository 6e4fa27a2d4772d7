import QtQuick
import Kestrel.Menubar
import Kestrel.Ui

/// Settings, refresh and quit.
Item {
    id: root

    required property AgendaModel agenda

    implicitHeight: Math.max(refresh.implicitHeight, quit.implicitHeight)

    Row {
        anchors.verticalCenter: parent.verticalCenter
        spacing: Metrics.space2

        IconButton {
            symbol: "gearshape"
            size: 15
            padding: Metrics.space1
            accessibleName: qsTrId("popover.footer.settings")
            toolTip: accessibleName
            onClicked: root.agenda.openSettings()
        }
        IconButton {
            id: refresh

            symbol: "arrow.clockwise"
            size: 15
            padding: Metrics.space1
            accessibleName: qsTrId("popover.footer.refresh")
            toolTip: root.agenda.refreshToolTip
            onClicked: root.agenda.refresh()

            RotationAnimation {
                target: refresh.contentItem
                property: "rotation"
                running: root.agenda.isRefreshing && Theme.motionAllowed
                         && refresh.Window.visibility !== Window.Hidden
                from: 0
                to: 360
                duration: 1000
                loops: Animation.Infinite
                onRunningChanged: if (!running)
                    refresh.contentItem.rotation = 0
            }
        }
    }
    Pressable {
        id: quit

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        padding: Metrics.space1
        accessibleName: qsTrId("popover.footer.quit")
        onClicked: root.agenda.quit()

        background: Rectangle {
            radius: quit.radius
            color: quit.hovered ? Theme.hairline : "transparent"
        }
        contentItem: PlainLabel {
            text: quit.accessibleName
            size: Metrics.textSmall
            color: Theme.secondaryText
        }
    }
}
