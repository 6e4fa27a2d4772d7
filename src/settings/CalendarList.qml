import QtQuick
import Kestrel.Settings
import Kestrel.Ui

/// The account's calendars; while they are read, or could not be, that in their place.
Column {
    id: root

    required property AccountItem item
    readonly property bool isWaiting: item.isLoading && rows.count === 0

    Item {
        height: 44
        visible: root.isWaiting
        width: parent.width

        WorkingSymbol {
            accessibleName: qsTrId("settings.accounts.loading")
            anchors.centerIn: parent
            visible: root.isWaiting
        }
    }
    ErrorText {
        bottomPadding: Metrics.space3
        leftPadding: Metrics.space7 + Metrics.space2
        rightPadding: Metrics.space4
        text: root.item.loadError
        width: parent.width
    }
    Repeater {
        id: rows

        model: root.item.loadError === "" ? root.item.calendars : null

        delegate: CalendarRow {
            width: root.width

            onColorPicked: hex => root.item.setColor(index, hex)
            onToggled: on => root.item.select(index, on)
        }
    }
    HelpText {
        bottomPadding: Metrics.space3
        leftPadding: Metrics.space7 + Metrics.space2
        rightPadding: Metrics.space4
        text: rows.count > 0 ? qsTrId("settings.accounts.calendars.help") : ""
        topPadding: Metrics.space1
        width: parent.width
    }
}
