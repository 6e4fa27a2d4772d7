import QtQuick
import Kestrel.Menubar
import Kestrel.Ui

/// A row's second line: platform, duration, attendees. A platform's long name gives way.
Item {
    id: root

    required property MeetingItem item

    implicitHeight: rest.implicitHeight

    Symbol {
        id: symbol

        anchors.verticalCenter: parent.verticalCenter
        name: root.item.platformSymbol
        size: Metrics.textSmall
        color: Theme.secondaryText
    }
    PlainLabel {
        id: platform

        anchors.left: symbol.right
        anchors.leftMargin: Metrics.space1
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, root.width - symbol.width - rest.width - 2 * Metrics.space1)
        text: root.item.platformName
        size: Metrics.textSmall
        rounded: true
        color: Theme.secondaryText
    }
    Row {
        id: rest

        anchors.left: platform.right
        anchors.leftMargin: Metrics.space1
        anchors.verticalCenter: parent.verticalCenter
        spacing: Metrics.space1

        PlainLabel {
            text: "·"
            size: Metrics.textSmall
            rounded: true
            color: Theme.secondaryText
        }
        PlainLabel {
            text: root.item.durationText
            size: Metrics.textSmall
            rounded: true
            color: Theme.secondaryText
        }
        Loader {
            active: root.item.attendeeCount !== ""
            visible: active
            sourceComponent: DetailPart {
                symbol: "person.2"
                text: root.item.attendeeCount
            }
        }
    }
}
