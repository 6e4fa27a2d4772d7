import QtQuick
import Kestrel.Ui

/// A switch with its label; a press anywhere on the row turns it.
FormRow {
    id: root

    property bool checked: false

    signal toggled(on: bool)

    MouseArea {
        parent: root
        anchors.fill: parent
        z: -1
        onClicked: toggle.flip()
    }
    ToggleSwitch {
        id: toggle

        accessibleName: root.label
        help: root.help
        isOn: root.checked

        onSwitched: on => root.toggled(on)
    }
}
