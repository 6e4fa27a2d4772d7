import QtQuick
import QtQuick.Templates as T
import Kestrel.Ui

/// What every button stands on: it gives way when it is pressed, shows where the keyboard is, and has a name
/// for those who cannot see it.
T.AbstractButton {
    id: root

    property string accessibleName: text
    property string toolTip
    property real radius: Metrics.radiusSmall
    readonly property real pressScale: 0.97
    readonly property real pressDim: 0.06

    Accessible.name: root.accessibleName
    Accessible.description: root.toolTip === root.accessibleName ? "" : root.toolTip
    Accessible.role: Accessible.Button
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    scale: down ? pressScale : 1

    Behavior on scale {
        enabled: Theme.motionAllowed

        NumberAnimation {
            duration: Metrics.pressDuration
            easing.type: Easing.OutQuad
        }
    }

    /// What Enter does; a button on which it is something else than a press has its own.
    function enter() {
        root.clicked();
    }

    Keys.onEnterPressed: root.enter()
    Keys.onReturnPressed: root.enter()

    // dimming and focus ring lie over whatever content a button has; neither is there before it is needed, nor after
    readonly property bool isLit: down || visualFocus

    onIsLitChanged: if (isLit)
        overlay.active = true

    Loader {
        id: overlay

        anchors.fill: parent
        active: false
        z: 1
        source: "PressOverlay.qml"
        onLoaded: (item as PressOverlay).button = root

        Connections {
            function onFaded() {
                overlay.active = false;
            }

            target: overlay.item
        }
    }
    // by file: a component of this file could not be made in the context of a button that stands on it
    Loader {
        active: root.toolTip !== "" && (root.hovered || root.visualFocus)
        source: "ToolTipBubble.qml"

        onLoaded: {
            const bubble = item as ToolTipBubble;
            bubble.parent = root;
            bubble.text = root.toolTip;
            bubble.visible = true;
        }
    }
}
