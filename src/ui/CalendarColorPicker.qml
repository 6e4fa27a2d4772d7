import QtQuick
import Kestrel.Ui
import QtQuick.Templates as T

/// A calendar's colour as a swatch, and behind it the colours that it can be given instead.
Pressable {
    id: root

    /// Empty texts: none.
    property string googleHex
    property string overrideHex
    property bool isOpen: false

    signal picked(hex: string)
    signal resetRequested

    accessibleName: toolTip
    padding: Metrics.space1
    radius: height / 2
    toolTip: overrideHex !== "" ? qsTrId("settings.calendar_color.help.custom") : qsTrId("settings.calendar_color.help.default")

    contentItem: Item {
        implicitHeight: 14
        implicitWidth: 14

        Rectangle {
            anchors.centerIn: parent
            border.color: Colors.faded("white", 0.55)
            color: Colors.swatch(root.overrideHex, root.googleHex, Colors.faded(Theme.secondaryText, 0.3))
            height: 14
            radius: 7
            width: 14
        }
    }

    onClicked: isOpen = !isOpen

    T.Popup {
        id: popup

        // a press on the swatch itself is its own click's to answer
        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent
        focus: true
        implicitHeight: contentItem.implicitHeight + padding * 2
        implicitWidth: contentItem.implicitWidth + padding * 2
        margins: Metrics.space1
        padding: Metrics.space3
        visible: root.isOpen
        y: root.height + Metrics.space1

        background: SmoothRectangle {
            color: Theme.card
            edge: Theme.hairline
            radius: Metrics.radiusButton
        }
        contentItem: CalendarColorGrid {
            canReset: root.overrideHex !== ""
            chosenHex: root.overrideHex

            onPicked: hex => {
                root.picked(hex);
                popup.close();
            }
            onResetRequested: {
                root.resetRequested();
                popup.close();
            }
        }

        onClosed: root.isOpen = false
        // the popup itself can be given no name
        onOpened: contentItem.parent.Accessible.name = root.accessibleName
    }
}
