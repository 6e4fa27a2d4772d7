import QtQuick
import Kestrel.Menubar
import Kestrel.Ui

/// The end of the agenda: that nothing comes next, and what is left of today.
Column {
    id: root

    required property AgendaModel agenda
    readonly property alias list: rows

    spacing: Metrics.space3

    Row {
        visible: root.agenda.isEmpty
        spacing: Metrics.space2

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: "checkmark.circle.fill"
            size: 17
            color: Theme.success
        }
        PlainLabel {
            anchors.verticalCenter: parent.verticalCenter
            text: qsTrId("popover.empty")
            Accessible.role: Accessible.StaticText
            Accessible.name: text
            rounded: true
            weight: Font.Medium
        }
    }
    Column {
        width: parent.width
        visible: rows.count > 0

        SectionHeader {
            text: qsTrId("popover.later_today")
        }
        ListView {
            id: rows

            width: parent.width
            height: root.agenda.laterTodayHeight
            clip: contentHeight > height
            currentIndex: -1
            keyNavigationEnabled: false
            interactive: contentHeight > height
            boundsBehavior: Flickable.StopAtBounds
            cacheBuffer: 0
            spacing: Metrics.space1
            model: root.agenda.laterToday

            Accessible.role: Accessible.List
            Accessible.name: qsTrId("popover.later_today")

            delegate: MeetingRow {
                width: ListView.view.width
            }

            Connections {
                target: root.agenda.laterToday

                function onUpdated() {
                    rows.forceLayout();
                }
            }
        }
    }
}
