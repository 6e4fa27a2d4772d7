import QtQuick
import QtQuick.Templates as T
import Kestrel.Ui

/// Scrolls what is higher than its room, and keeps in sight what the keyboard is on.
Flickable {
    id: root

    /// Left free around what the keyboard is on.
    readonly property real comfort: Metrics.space7
    readonly property Item focused: Window.activeFocusItem

    boundsBehavior: Flickable.StopAtBounds
    clip: true
    interactive: contentHeight > height

    onFocusedChanged: root.reveal()

    function reveal() {
        let parent = root.focused;
        while (parent && parent !== root.contentItem)
            parent = parent.parent;
        if (!parent)
            return;
        const top = root.focused.mapToItem(root.contentItem, 0, 0).y - root.comfort;
        const bottom = top + root.focused.height + 2 * root.comfort;
        if (top < root.contentY)
            root.contentY = Math.max(0, top);
        else if (bottom > root.contentY + root.height)
            root.contentY = Math.min(bottom, root.contentHeight) - root.height;
    }

    T.ScrollBar.vertical: T.ScrollBar {
        id: bar

        Accessible.ignored: true
        implicitWidth: 10
        padding: 2
        visible: root.interactive

        contentItem: Rectangle {
            color: Colors.faded(Theme.text, bar.pressed ? 0.5 : bar.hovered ? 0.4 : 0.25)
            radius: width / 2
        }
    }
}
