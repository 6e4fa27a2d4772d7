import QtQuick
import Kestrel.Menubar
import Kestrel.Ui

/// The large card of a meeting that runs or comes next. Enter joins it.
GlassCard {
    id: root

    required property int index
    required property MeetingItem item
    /// Null: it has not begun.
    required property OngoingProgress progress

    readonly property color platformTint: item.hasTint ? item.tint : Theme.accent

    activeFocusOnTab: true
    implicitHeight: Math.max(content.height, 28) + 2 * padding
    padding: Metrics.space3
    radius: Metrics.radiusCard
    tinted: true
    tint: platformTint

    Accessible.role: Accessible.ListItem
    Accessible.name: item.summary
    Accessible.description: item.details
    Accessible.focusable: true
    Accessible.onPressAction: root.item.joinOrOpen()
    Keys.onReturnPressed: root.item.joinOrOpen()
    Keys.onEnterPressed: root.item.joinOrOpen()

    Rectangle {
        anchors.fill: parent
        anchors.margins: -root.padding
        visible: root.activeFocus
        radius: root.radius
        color: "transparent"
        border.color: Theme.accent
        border.width: 2
    }
    CalendarStripe {
        id: stripe

        height: parent.height
        colorHex: root.item.calendarColorHex
        fallback: root.platformTint
        minimumHeight: 28
    }
    Loader {
        id: badge

        active: root.progress !== null
        width: active ? 64 : 0
        anchors.left: stripe.right
        anchors.leftMargin: active ? Metrics.space3 : 0
        anchors.verticalCenter: parent.verticalCenter
        sourceComponent: OngoingProgressBadge {
            progress: root.progress
        }
    }
    Column {
        id: content

        anchors.left: badge.right
        anchors.leftMargin: Metrics.space3
        anchors.right: parent.right
        spacing: Metrics.space2

        Loader {
            active: root.progress === null
            visible: active
            sourceComponent: CountdownPill {
                countdown: root.item.countdown
            }
        }
        PlainLabel {
            width: parent.width
            horizontalAlignment: Text.AlignLeft
            text: root.item.title
            size: Metrics.textTitle
            rounded: true
            weight: Font.DemiBold
            wrapMode: Text.Wrap
            maximumLineCount: 2
        }
        Flow {
            width: parent.width
            spacing: Metrics.space1

            DetailPart {
                first: true
                symbol: "clock"
                text: root.item.startText + " – " + root.item.endText
            }
            DetailPart {
                text: root.item.durationText
            }
            DetailPart {
                visible: text !== ""
                symbol: "person.2"
                text: root.item.attendeeCount
            }
        }
        Loader {
            width: parent.width
            active: root.item.location !== ""
            visible: active
            sourceComponent: MeetingLocationLabel {
                item: root.item
            }
        }
        Item {
            width: parent.width
            height: Math.max(join.height, page.height)
            visible: root.item.canJoin || root.item.canOpenInCalendar

            JoinButton {
                id: join

                width: Math.min(implicitWidth, parent.width - page.width - Metrics.space2)
                height: visible ? implicitHeight : 0
                visible: root.item.canJoin
                item: root.item
                prominent: true
            }
            OpenInCalendarButton {
                id: page

                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                visible: root.item.canOpenInCalendar
                item: root.item
            }
        }
    }
}
