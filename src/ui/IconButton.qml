import QtQuick
import Kestrel.Ui

/// A symbol that can be pressed.
Pressable {
    id: root

    required property string symbol
    property real size: Metrics.textSmall
    property color color: Theme.secondaryText

    accessibleName: toolTip
    padding: Metrics.space1

    background: Rectangle {
        color: root.hovered ? Theme.hairline : "transparent"
        radius: root.radius
    }
    contentItem: Symbol {
        color: root.color
        name: root.symbol
        size: root.size
    }
}
