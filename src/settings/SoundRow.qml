import QtQuick
import QtQuick.Templates as T
import Kestrel.Ui

/// One of the alert's sounds: choosing it lets it be heard, and so does the button beside it without choosing.
/// The keyboard reaches the chosen one; arrows choose its neighbours.
Item {
    id: root

    required property string sound
    required property bool isSelected

    signal selected
    signal played
    signal stepped(by: int)

    implicitHeight: 34

    function takeFocus() {
        choice.forceActiveFocus(Qt.TabFocusReason);
    }

    T.RadioButton {
        id: choice

        Accessible.name: root.sound
        anchors.fill: parent
        anchors.margins: 2
        checked: root.isSelected
        // as long as it has the focus it must not lose its place in the chain
        focusPolicy: root.isSelected || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
        hoverEnabled: true

        background: Rectangle {
            color: choice.hovered ? Colors.faded(Theme.text, 0.04) : "transparent"
            radius: Metrics.radiusControl
        }
        contentItem: Item {
            Symbol {
                id: mark

                anchors.verticalCenter: parent.verticalCenter
                color: root.isSelected ? Theme.accent : Theme.tertiaryText
                name: root.isSelected ? "largecircle.fill.circle" : "circle"
                size: Metrics.textTitle
                x: Metrics.space4 - 2
            }
            PlainLabel {
                anchors.left: mark.right
                anchors.leftMargin: Metrics.space3
                anchors.verticalCenter: parent.verticalCenter
                text: root.sound
                weight: root.isSelected ? Font.DemiBold : Font.Normal
            }
        }

        Accessible.onPressAction: root.selected()
        Accessible.onToggleAction: root.selected()
        Keys.onDownPressed: root.stepped(1)
        Keys.onEnterPressed: root.selected()
        Keys.onReturnPressed: root.selected()
        Keys.onUpPressed: root.stepped(-1)
        onClicked: root.selected()
        onToggled: checked = Qt.binding(() => root.isSelected)

        FocusRing {
            around: Metrics.radiusControl
            shown: choice.visualFocus
        }
    }
    IconButton {
        accessibleName: toolTip + ": " + root.sound
        anchors.right: parent.right
        anchors.rightMargin: Metrics.space3
        anchors.verticalCenter: parent.verticalCenter
        size: Metrics.textFigure
        symbol: "play.circle"
        toolTip: qsTrId("settings.sound.preview")

        onClicked: root.played()
    }
}
