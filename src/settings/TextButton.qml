import QtQuick
import Kestrel.Ui

/// A button with a word on it, and a symbol before that where there is one.
Pressable {
    id: root

    property string symbol

    bottomPadding: Metrics.space1
    implicitHeight: 30
    leftPadding: Metrics.space3
    opacity: enabled ? 1 : 0.45
    rightPadding: Metrics.space3
    topPadding: Metrics.space1

    background: SmoothRectangle {
        color: Colors.faded(Theme.text, root.hovered ? 0.1 : 0.07)
        edge: Colors.faded(Theme.text, 0.12)
        radius: root.radius
    }
    contentItem: Item {
        implicitHeight: label.implicitHeight
        implicitWidth: mark.width + (mark.visible ? Metrics.space2 : 0) + label.implicitWidth

        Symbol {
            id: mark

            anchors.verticalCenter: parent.verticalCenter
            name: root.symbol
            size: visible ? Metrics.textSubtitle : 0
            visible: root.symbol !== ""
        }
        PlainLabel {
            id: label

            anchors.left: mark.right
            anchors.leftMargin: mark.visible ? Metrics.space2 : 0
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: root.text
        }
    }
}
