import QtQuick
import QtQuick.Templates as T
import Kestrel.Ui

/// One of several, from a menu.
T.ComboBox {
    id: root

    required property string accessibleName
    property string help
    required property var labels
    required property int chosenIndex

    signal chosen(index: int)

    Accessible.description: root.help === "" ? displayText : displayText + ". " + root.help
    Accessible.name: root.accessibleName
    Accessible.role: Accessible.ComboBox
    currentIndex: chosenIndex
    focusPolicy: Qt.StrongFocus
    implicitHeight: 30
    implicitWidth: Math.max(120, widest) + leftPadding + rightPadding
    leftPadding: Metrics.space3
    model: root.labels
    rightPadding: Metrics.space3 + Metrics.textBody + Metrics.space2

    readonly property real widest: Math.ceil(Math.max(...root.labels.map(label => letters.advanceWidth(label))))

    Accessible.onPressAction: root.popup.open()
    onActivated: index => root.chosen(index)
    // a new list makes the template choose its first entry
    onModelChanged: currentIndex = Qt.binding(() => root.chosenIndex)

    FontMetrics {
        id: letters

        font.family: Theme.family
        font.pixelSize: Metrics.textBody
        font.weight: Font.DemiBold
    }

    background: SmoothRectangle {
        color: root.hovered || root.popup.visible ? Colors.faded(Theme.text, 0.1) : Colors.faded(Theme.text, 0.07)
        edge: Colors.faded(Theme.text, 0.12)
        radius: Metrics.radiusSmall

        FocusRing {
            shown: root.visualFocus
        }
    }
    contentItem: PlainLabel {
        text: root.displayText
        verticalAlignment: Text.AlignVCenter
    }
    indicator: Symbol {
        name: "chevron.right"
        rotation: 90
        size: Metrics.textSmall
        x: root.width - width - Metrics.space3
        y: (root.height - height) / 2
    }
    delegate: T.ItemDelegate {
        id: entry

        required property int index
        required property string modelData

        Accessible.focusable: true
        Accessible.name: modelData
        Accessible.selectable: true
        Accessible.selected: highlighted
        highlighted: root.highlightedIndex === index
        hoverEnabled: true
        implicitHeight: 32
        leftPadding: Metrics.space3
        rightPadding: Metrics.space3
        width: ListView.view?.width ?? 0

        background: SmoothRectangle {
            color: entry.highlighted ? Colors.faded(Theme.text, 0.1) : "transparent"
            radius: Metrics.radiusSmall
        }
        contentItem: PlainLabel {
            text: entry.modelData
            verticalAlignment: Text.AlignVCenter
            weight: entry.index === root.chosenIndex ? Font.DemiBold : Font.Normal
        }
    }
    popup: T.Popup {
        implicitHeight: contentItem.implicitHeight + 2 * padding
        margins: Metrics.space2
        padding: Metrics.space1
        width: root.width
        y: root.height + Metrics.space1

        background: SmoothRectangle {
            color: Theme.card
            edge: Colors.faded(Theme.text, 0.2)
            radius: Metrics.radiusControl
        }
        contentItem: ListView {
            clip: true
            currentIndex: root.highlightedIndex
            implicitHeight: contentHeight
            model: root.popup.visible ? root.delegateModel : null
        }

        // the popup itself can be given no name
        onOpened: contentItem.parent.Accessible.name = root.accessibleName
    }
}
