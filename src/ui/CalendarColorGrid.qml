import QtQuick
import Kestrel.Ui

/// The colours that a calendar can be given, and the way back to its own.
Column {
    id: root

    property bool canReset: false
    property string chosenHex

    signal picked(hex: string)
    signal resetRequested

    spacing: Metrics.space2
    width: 220

    function goTo(index: int) {
        swatches.itemAt(index)?.forceActiveFocus(Qt.TabFocusReason);
    }

    Grid {
        anchors.horizontalCenter: parent.horizontalCenter
        columnSpacing: 6
        columns: 8
        rowSpacing: 6

        Repeater {
            id: swatches

            model: Colors.calendarPalette

            delegate: Pressable {
                id: swatch

                required property int index
                required property string modelData

                Accessible.selectable: true
                Accessible.selected: modelData === root.chosenHex
                accessibleName: Colors.name(modelData)
                height: 22
                radius: 11
                width: 22

                background: Rectangle {
                    border.color: swatch.modelData === root.chosenHex ? Theme.text : Colors.faded("white", 0.55)
                    border.width: swatch.modelData === root.chosenHex ? 2 : 1
                    color: swatch.modelData
                    radius: 11
                }

                Keys.onDownPressed: root.goTo(index + 8)
                Keys.onLeftPressed: root.goTo(index - 1)
                Keys.onRightPressed: root.goTo(index + 1)
                Keys.onUpPressed: root.goTo(index - 8)
                onClicked: root.picked(modelData)
            }
        }
    }
    Rectangle {
        color: Theme.hairline
        height: 1
        width: parent.width
    }
    Pressable {
        id: reset

        accessibleName: qsTrId("settings.calendar_color.reset")
        enabled: root.canReset
        opacity: enabled ? 1 : 0.45
        padding: Metrics.space1

        contentItem: Row {
            spacing: Metrics.space2

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                name: "arrow.uturn.backward"
            }
            PlainLabel {
                Accessible.ignored: true
                anchors.verticalCenter: parent.verticalCenter
                text: reset.accessibleName
            }
        }

        onClicked: root.resetRequested()
    }
}
