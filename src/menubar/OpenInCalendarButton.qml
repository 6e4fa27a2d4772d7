import QtQuick
import Kestrel.Menubar
import Kestrel.Ui

/// Opens the meeting's own page in the calendar.
IconButton {
    id: root

    required property MeetingItem item

    symbol: "arrow.up.right.square"
    size: 13
    padding: Metrics.space1
    color: Theme.secondaryText
    accessibleName: qsTrId("meeting.open_in_calendar")
    toolTip: accessibleName

    onClicked: root.item.openInCalendar()
}
