import QtQuick
import Kestrel.Ui

/// Where the keyboard is.
Rectangle {
    id: root

    property bool shown: false
    property real around: Metrics.radiusSmall

    anchors.fill: parent
    anchors.margins: -2
    border.color: Theme.accent
    border.width: 2
    color: "transparent"
    radius: root.around + 2
    visible: root.shown
}
