import QtQuick
import Kestrel.Settings
import Kestrel.Ui

/// A line that unfolds into the account's calendars.
Column {
    id: root

    required property AccountItem item

    Rectangle {
        anchors.right: parent.right
        color: Theme.hairline
        height: 1
        width: parent.width - Metrics.space4
    }
    Pressable {
        id: line

        Accessible.checkable: true
        Accessible.checked: root.item.calendarsExpanded
        Accessible.role: Accessible.CheckBox
        accessibleName: root.item.calendarsTitle
        height: 43
        leftPadding: Metrics.space4
        width: parent.width

        background: Rectangle {
            color: line.hovered ? Colors.faded(Theme.text, 0.04) : "transparent"
        }
        contentItem: Item {
            Symbol {
                id: mark

                anchors.verticalCenter: parent.verticalCenter
                color: Theme.secondaryText
                name: "chevron.right"
                rotation: root.item.calendarsExpanded ? 90 : 0

                Behavior on rotation {
                    enabled: Theme.motionAllowed

                    NumberAnimation {
                        duration: Metrics.pressDuration
                    }
                }
            }
            PlainLabel {
                anchors.left: mark.right
                anchors.leftMargin: Metrics.space2
                anchors.verticalCenter: parent.verticalCenter
                text: root.item.calendarsTitle
            }
        }

        function flip() {
            root.item.calendarsExpanded = !root.item.calendarsExpanded;
        }

        Accessible.onPressAction: flip()
        Accessible.onToggleAction: flip()
        onClicked: flip()
    }
    Loader {
        // without its item it keeps the height of the one it had
        visible: active
        width: parent.width

        // by file and not by a component of this one, so that nothing of it is there before it is needed
        Component.onCompleted: setSource("CalendarList.qml", { item: root.item })
        active: root.item.calendarsExpanded
    }
}
