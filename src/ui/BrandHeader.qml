import QtQuick
import Kestrel.Ui

/// The application's icon and name, and what it is for where there is room.
Row {
    id: root

    property bool compact: false

    Accessible.name: "Kestrel"
    Accessible.role: Accessible.Heading
    spacing: compact ? Metrics.space2 : Metrics.space3

    Symbol {
        anchors.verticalCenter: parent.verticalCenter
        name: "kestrel"
        size: root.compact ? 28 : 40
    }
    Column {
        anchors.verticalCenter: parent.verticalCenter

        PlainLabel {
            Accessible.ignored: true
            rounded: true
            size: root.compact ? Metrics.textSubtitle : Metrics.textLarge
            text: "Kestrel"
            weight: root.compact ? Font.DemiBold : Font.Bold
        }
        PlainLabel {
            color: Theme.secondaryText
            size: Metrics.textSmall
            text: qsTrId("brand.tagline")
            visible: !root.compact
        }
    }
}
