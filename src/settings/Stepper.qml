import QtQuick
import QtQuick.Templates as T
import Kestrel.Ui

/// A number in words, with less and more beside it.
T.SpinBox {
    id: root

    required property string accessibleName
    required property string shownText

    Accessible.description: root.shownText
    Accessible.name: root.accessibleName
    Accessible.role: Accessible.SpinBox
    focusPolicy: Qt.StrongFocus
    implicitHeight: 30
    implicitWidth: implicitContentWidth + rightPadding
    rightPadding: 2 * 30 + Metrics.space3

    // the template's own changes the value without saying that a person did
    Accessible.onDecreaseAction: root.step(-1)
    Accessible.onIncreaseAction: root.step(1)
    // the template makes a place for the keyboard of it, for boxes that are typed into
    Component.onCompleted: contentItem.activeFocusOnTab = false

    function step(by: int) {
        if (by > 0)
            root.increase();
        else
            root.decrease();
        root.valueModified();
    }

    component Half: Item {
        id: half

        required property bool isUp
        required property bool isHovered
        required property bool isPressed

        implicitHeight: 30
        implicitWidth: 30
        opacity: enabled ? 1 : 0.4

        SmoothRectangle {
            anchors.fill: parent
            color: Colors.faded(Theme.text, half.isPressed ? 0.16 : half.isHovered ? 0.1 : 0.07)
            radius: Metrics.radiusSmall
            anchors.leftMargin: half.isUp ? 1 : 0
            anchors.rightMargin: half.isUp ? 0 : 1
        }
        Rectangle {
            anchors.centerIn: parent
            color: Theme.text
            height: 1.5
            width: 11
        }
        Rectangle {
            anchors.centerIn: parent
            color: Theme.text
            height: 11
            visible: half.isUp
            width: 1.5
        }
    }

    contentItem: PlainLabel {
        horizontalAlignment: Text.AlignRight
        text: root.shownText
        verticalAlignment: Text.AlignVCenter
    }
    down.indicator: Half {
        enabled: root.value > root.from
        isHovered: root.down.hovered
        isPressed: root.down.pressed
        isUp: false
        x: root.width - 60
    }
    up.indicator: Half {
        enabled: root.value < root.to
        isHovered: root.up.hovered
        isPressed: root.up.pressed
        isUp: true
        x: root.width - 30
    }
    background: Item {
        FocusRing {
            anchors.leftMargin: root.width - 62
            shown: root.visualFocus
        }
    }
}
