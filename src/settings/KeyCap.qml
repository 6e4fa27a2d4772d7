import QtQuick
import Kestrel.Ui

/// One key of a shortcut.
Item {
    id: root

    required property string label

    Accessible.ignored: true
    implicitHeight: 24
    implicitWidth: Math.max(implicitHeight, name.implicitWidth + Metrics.space2 * 2)

    Rectangle {
        anchors.fill: parent
        border.color: Qt.alpha(Theme.text, 0.2)
        color: Qt.alpha(Theme.text, 0.12)
        radius: Metrics.radiusSmall
    }
    PlainLabel {
        id: name

        anchors.centerIn: parent
        text: root.label
        weight: Font.Medium
    }
}
