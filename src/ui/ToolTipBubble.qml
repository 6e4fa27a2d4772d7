import QtQuick
import Kestrel.Ui

/// A short explanation over what the pointer rests on, or under it where there is no room; stays inside the window.
Item {
    id: root

    required property Item explained
    required property string text

    parent: explained.Window.contentItem
    height: label.implicitHeight + 2 * Metrics.space1
    visible: false
    width: Math.min(label.implicitWidth + 2 * Metrics.space2, (parent?.width ?? 0) - 2 * Metrics.space1)
    z: 1

    function appear() {
        const middle = explained.mapToItem(parent, explained.width / 2, 0);
        const above = middle.y - height - Metrics.space1;
        x = Math.round(Math.max(Metrics.space1, Math.min(middle.x - width / 2, parent.width - width - Metrics.space1)));
        y = Math.round(above >= Metrics.space1 ? above : middle.y + explained.height + Metrics.space1);
        visible = true;
    }

    Timer {
        interval: 600
        running: true

        onTriggered: root.appear()
    }
    SmoothRectangle {
        anchors.fill: parent
        color: Theme.card
        edge: Theme.hairline
        radius: Metrics.radiusSmall
    }
    PlainLabel {
        id: label

        anchors.centerIn: parent
        size: Metrics.textSmall
        text: root.text
        width: parent.width - 2 * Metrics.space2
    }
}
