import QtQuick
import QtQuick.Templates as T
import Kestrel.Ui

/// What lies over a button that is pressed or has the keyboard: a little darkness, a ring.
Item {
    id: root

    property T.AbstractButton button
    readonly property real cornerRadius: (button as Pressable)?.radius ?? 0
    readonly property bool isDown: button?.down ?? false
    readonly property bool hasRing: button?.visualFocus ?? false

    /// Nothing of it can be seen any more.
    signal faded

    opacity: dim.opacity > 0 || hasRing ? 1 : 0

    onOpacityChanged: if (opacity === 0 && !isDown)
        faded()

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
