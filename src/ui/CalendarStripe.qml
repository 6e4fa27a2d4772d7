import QtQuick
import Kestrel.Ui

/// The calendar's colour at the edge of a row, as high as the row.
SmoothRectangle {
    id: root

    property string colorHex
    property color fallback: Theme.accent
    property real minimumHeight: 0

    color: Colors.stripe(colorHex, fallback)
    implicitHeight: minimumHeight
    implicitWidth: 4
    radius: root.width / 2
}
