import QtQuick
import Kestrel.Menubar
import Kestrel.Ui

/// A meeting of later today in one row. A press opens its page, Enter joins it.
Pressable {
    id: root

    required property int index
    required property MeetingItem item

    readonly property color platformTint: item.hasTint ? item.tint : Theme.accent

    accessibleName: item.summary
    Accessible.description: item.details
    Accessible.role: Accessible.ListItem
    Accessible.onPressAction: root.item.activate()
    leftPadding: Metrics.space3
    rightPadding: Metrics.space3
    topPadding: Metrics.space2
    bottomPadding: Metrics.space2
    radius: Metrics.radiusControl

    function enter() {
        root.item.joinOrOpen();
    }

    onClicked: root.item.activate()

    background: GlassSurface {
        radius: root.radius
    }

    contentItem: Item {
        implicitHeight: Math.max(32, texts.implicitHeight)

        CalendarStripe {
            id: stripe

            height: parent.height
            colorHex: root.item.calendarColorHex
            fallback: root.platformTint
            minimumHeight: 32
        }
        PlainLabel {
            id: time

            anchors.left: stripe.right
            anchors.leftMargin: Metrics.space2
            anchors.verticalCenter: parent.verticalCenter
            width: Math.max(48, implicitWidth)
            text: root.item.startText
            rounded: true
            tabular: true
            weight: Font.Medium
        }
        Column {
            id: texts

            anchors.left: time.right
            anchors.leftMargin: Metrics.space2
            anchors.right: buttons.left
            anchors.rightMargin: Metrics.space2
            anchors.verticalCenter: parent.verticalCenter
            spacing: 1

            PlainLabel {
                width: parent.width
                horizontalAlignment: Text.AlignLeft
                text: root.item.title
                rounded: true
                weight: Font.Medium
                maximumLineCount: 1
            }
            RowDetails {
                width: parent.width
                item: root.item
            }
        }
        Row {
            id: buttons

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: Metrics.space2

            JoinButton {
                anchors.verticalCenter: parent.verticalCenter
                visible: root.item.canJoin
                item: root.item
                compact: true
            }
            OpenInCalendarButton {
                anchors.verticalCenter: parent.verticalCenter
                visible: root.item.canOpenInCalendar
                item: root.item
            }
        }
    }
}
