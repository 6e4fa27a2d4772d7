import QtQuick
import QtQuick.Templates as T
import Kestrel.Ui

/// On or off. Asks for the other of the two and then shows what came of that.
T.AbstractButton {
    id: root

    required property string accessibleName
    required property bool isOn
    property string help

    signal switched(on: bool)

    Accessible.description: root.help
    Accessible.name: root.accessibleName
    Accessible.role: Accessible.CheckBox
    checkable: true
    checked: isOn
    focusPolicy: Qt.StrongFocus
    implicitHeight: 20
    implicitWidth: 36

    indicator: Rectangle {
        border.color: root.checked ? Theme.accent : Theme.tertiaryText
        border.width: 1.5
        color: root.checked ? Theme.accent : "transparent"
        height: 20
        opacity: root.enabled ? 1 : 0.45
        radius: 10
        width: 36

        Rectangle {
            color: root.checked ? Theme.card : Theme.tertiaryText
            height: width
            radius: width / 2
            width: root.checked ? 14 : 12
            x: root.checked ? parent.width - width - 3 : 4
            y: (parent.height - height) / 2

            Behavior on x {
                enabled: Theme.motionAllowed

                NumberAnimation {
                    duration: Metrics.pressDuration
                    easing.type: Easing.OutQuad
                }
            }
        }
    }

    function flip() {
        root.switched(!root.isOn);
        root.checked = Qt.binding(() => root.isOn);
    }

    Accessible.onPressAction: root.flip()
    Accessible.onToggleAction: root.flip()
    Keys.onEnterPressed: root.flip()
    Keys.onReturnPressed: root.flip()
    onToggled: root.flip()

    FocusRing {
        around: 10
        shown: root.visualFocus
    }
}
