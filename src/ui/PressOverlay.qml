import QtQuick
import Kestrel.Ui

/// What lies over a button that is pressed or has the keyboard: a little darkness, a ring. Goes when nothing of it
/// can be seen any more.
Item {
    id: root

    property Pressable button
    readonly property real cornerRadius: button?.radius ?? 0
    readonly property bool isDown: button?.pressed ?? false
    readonly property bool hasRing: button?.visualFocus ?? false
    /// How large the button is while it gives way.
    property real give: isDown ? 0.97 : 1

    anchors.fill: parent
    opacity: dim.opacity > 0 || hasRing ? 1 : 0
    z: 1

    onOpacityChanged: {
        if (opacity === 0 && !isDown && button) {
            button.overlay = null;
            destroy();
        }
    }

    Behavior on give {
        enabled: Theme.motionAllowed

        NumberAnimation {
            duration: Metrics.pressDuration
            easing.type: Easing.OutQuad
        }
    }

    Rectangle {
        id: dim

        anchors.fill: parent
        color: "black"
        opacity: root.isDown ? 0.06 : 0
        radius: root.cornerRadius

        Behavior on opacity {
            enabled: Theme.motionAllowed

            NumberAnimation {
                duration: Metrics.pressDuration
                easing.type: Easing.OutQuad
            }
        }
    }
    Rectangle {
        anchors.fill: parent
        anchors.margins: -2
        border.color: Theme.accent
        border.width: 2
        color: "transparent"
        radius: root.cornerRadius + 2
        visible: root.hasRing
    }
}
