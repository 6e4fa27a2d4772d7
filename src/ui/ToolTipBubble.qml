import QtQuick
import Kestrel.Ui
import QtQuick.Templates as T

/// A short explanation beside what the pointer rests on; stays inside the window.
T.ToolTip {
    id: root

    delay: 600
    margins: Metrics.space1
    padding: Metrics.space1
    leftPadding: Metrics.space2
    rightPadding: Metrics.space2
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: -height - Metrics.space1

    background: SmoothRectangle {
        color: Theme.card
        edge: Theme.hairline
        radius: Metrics.radiusSmall
    }
    contentItem: PlainLabel {
        size: Metrics.textSmall
        text: root.text
    }
}
