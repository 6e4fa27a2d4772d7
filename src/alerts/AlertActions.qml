import QtQuick
import Kestrel.Ui
import Kestrel.Menubar

/// Joins the meeting, or opens its page in the calendar.
Item {
    id: root

    required property MeetingItem item

    implicitHeight: Metrics.space1 + Math.max(join.visible ? join.height : 0, page.visible ? page.height : 0)

    JoinButton {
        id: join

        anchors.bottom: parent.bottom
        width: Math.min(implicitWidth, root.width - page.width - Metrics.space3)
        visible: root.item.canJoin
        item: root.item
        prominent: true
    }
    OpenInCalendarButton {
        id: page

        anchors.right: parent.right
        y: Metrics.space1 + (parent.height - Metrics.space1 - height) / 2
        visible: root.item.canOpenInCalendar
        item: root.item
    }
}
