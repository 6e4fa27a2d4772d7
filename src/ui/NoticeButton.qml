import QtQuick
import Kestrel.Ui

/// A button with a word on it. Prominent: the one that Enter presses.
Pressable {
    id: root

    property bool prominent: false

    radius: Metrics.radiusButton
    leftPadding: Metrics.space4
    rightPadding: Metrics.space4
    topPadding: Metrics.space2
    bottomPadding: Metrics.space2

    background: SmoothRectangle {
        radius: root.radius
        color: {
            if (root.prominent)
                return root.hovered ? Qt.darker(Theme.accent, 1.08) : Theme.accent;
            return Colors.faded(Theme.text, root.hovered ? 0.14 : 0.08);
        }
    }
    contentItem: PlainLabel {
        text: root.text
        color: root.prominent ? Colors.inkOn(Theme.accent) : Theme.text
        horizontalAlignment: Text.AlignHCenter
        rounded: true
        weight: Font.DemiBold
    }
}
