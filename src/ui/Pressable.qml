import QtQuick
import Kestrel.Ui

/// What every button stands on: it gives way when it is pressed, shows where the keyboard is, and has a name
/// for those who cannot see it.
PressArea {
    id: root

    property string text
    property string accessibleName: text
    property string toolTip
    property real radius: Metrics.radiusSmall
    // Dimming and focus ring lie over whatever content a button has. Neither they nor the bubble are there before
    // they are needed, nor after: an agenda has three dozen buttons, and hardly one is ever touched.
    property Item overlay: null
    property Item bubble: null
    readonly property bool isLit: pressed || visualFocus
    readonly property bool isExplained: toolTip !== "" && (hovered || visualFocus)

    Accessible.name: root.accessibleName
    Accessible.description: root.accessibleName.includes(root.toolTip) ? "" : root.toolTip
    // Qt 6.4 does not say of a button that it is disabled, and lets a screen reader press it
    Accessible.ignored: !root.enabled
    Accessible.role: Accessible.Button
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    scale: overlay ? (overlay as PressOverlay).give : 1

    /// What Enter does; a button on which it is something else than a press has its own.
    function enter() {
        root.clicked();
    }
    // by file: a component of this file could not be made in the context of a button that stands on it
    function light() {
        overlay = Qt.createComponent("PressOverlay.qml").createObject(root) as Item;
        // what it shows begins to move with this
        (overlay as PressOverlay).button = root;
    }
    function explain() {
        bubble = Qt.createComponent("ToolTipBubble.qml").createObject(root, {
            explained: root,
            text: root.toolTip
        }) as Item;
    }

    Keys.onEnterPressed: root.enter()
    Keys.onReturnPressed: root.enter()

    onIsLitChanged: if (isLit && !overlay)
        light()
    onIsExplainedChanged: {
        if (isExplained) {
            explain();
        } else {
            bubble?.destroy();
            bubble = null;
        }
    }
}
