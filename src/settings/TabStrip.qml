import QtQuick
import QtQuick.Templates as T
import Kestrel.Ui

/// The tabs' symbols and titles. The keyboard reaches the chosen one; arrows choose its neighbours.
Item {
    id: root

    required property var titles
    required property var symbols
    required property int currentIndex

    signal chosen(index: int)

    Accessible.role: Accessible.PageTabList
    Accessible.name: Window.window?.title ?? ""
    implicitHeight: row.height + 2 * Metrics.space2
    implicitWidth: row.width + 2 * Metrics.space3

    function focusChosen() {
        tabs.itemAt(root.currentIndex).forceActiveFocus(Qt.TabFocusReason);
    }
    function choose(index) {
        root.chosen((index + root.titles.length) % root.titles.length);
        root.focusChosen();
    }

    FontMetrics {
        id: letters

        font.family: Theme.family
        font.pixelSize: Metrics.textSmall
        font.weight: Font.DemiBold
    }
    Row {
        id: row

        anchors.centerIn: parent
        spacing: Metrics.space1

        Repeater {
            id: tabs

            model: root.titles.length

            delegate: T.TabButton {
                id: tab

                required property int index
                readonly property bool isChosen: index === root.currentIndex

                Accessible.name: text
                Accessible.selectable: true
                Accessible.selected: isChosen
                // which one is chosen is not its own to say
                checkable: false
                // as long as it has the focus it must not lose its place in the chain
                focusPolicy: isChosen || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
                height: 52
                hoverEnabled: true
                text: root.titles[index]
                // as for the chosen one, so that nothing moves when another is
                width: Math.max(84, Math.ceil(letters.advanceWidth(text)) + 2 * Metrics.space2)

                background: SmoothRectangle {
                    color: tab.isChosen ? Colors.faded(Theme.accent, 0.14)
                                        : tab.hovered ? Colors.faded(Theme.text, 0.06) : "transparent"
                    radius: Metrics.radiusControl
                }
                contentItem: Item {
                    Symbol {
                        anchors.horizontalCenter: parent.horizontalCenter
                        color: tab.isChosen ? Theme.accent : Theme.secondaryText
                        name: root.symbols[tab.index]
                        size: 22
                        y: 7
                    }
                    PlainLabel {
                        anchors.horizontalCenter: parent.horizontalCenter
                        color: tab.isChosen ? Theme.text : Theme.secondaryText
                        size: Metrics.textSmall
                        text: tab.text
                        weight: tab.isChosen ? Font.DemiBold : Font.Normal
                        y: 33
                    }
                }

                Accessible.onPressAction: root.choose(index)
                Keys.onLeftPressed: root.choose(index - 1)
                Keys.onRightPressed: root.choose(index + 1)
                onClicked: root.choose(index)

                FocusRing {
                    around: Metrics.radiusControl
                    shown: tab.visualFocus
                }
            }
        }
    }
}
