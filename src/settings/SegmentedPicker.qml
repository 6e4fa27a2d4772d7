import QtQuick
import QtQuick.Templates as T
import Kestrel.Ui

/// One of a few, side by side. The keyboard reaches the chosen one; arrows choose its neighbours.
SmoothRectangle {
    id: root

    required property string accessibleName
    property string help
    required property var labels
    property var symbols: []
    /// -1: none of them.
    required property int currentIndex

    signal chosen(index: int)

    Accessible.description: root.help
    Accessible.name: root.accessibleName
    Accessible.role: Accessible.Grouping
    color: Colors.faded(Theme.text, 0.07)
    implicitHeight: 30
    implicitWidth: row.width + 4
    radius: Metrics.radiusSmall + 2

    function choose(index) {
        const next = Math.max(0, Math.min(index, root.labels.length - 1));
        segments.itemAt(next).forceActiveFocus(Qt.TabFocusReason);
        if (next !== root.currentIndex)
            root.chosen(next);
    }

    Row {
        id: row

        x: 2
        y: 2

        Repeater {
            id: segments

            model: root.labels.length

            delegate: T.RadioButton {
                id: segment

                required property int index
                readonly property bool isChosen: index === root.currentIndex
                readonly property string symbol: root.symbols[index] ?? ""

                Accessible.name: root.accessibleName + ": " + text
                checked: isChosen
                // as long as it has the focus it must not lose its place in the chain
                focusPolicy: isChosen || activeFocus || root.currentIndex < 0 && index === 0 ? Qt.StrongFocus
                                                                                             : Qt.ClickFocus
                height: 26
                leftPadding: Metrics.space3
                rightPadding: Metrics.space3
                text: root.labels[index]
                width: implicitContentWidth + leftPadding + rightPadding

                background: SmoothRectangle {
                    color: segment.isChosen ? (Theme.isDark ? Colors.faded(Theme.text, 0.2) : Theme.card)
                                            : segment.hovered ? Colors.faded(Theme.text, 0.05) : "transparent"
                    edge: segment.isChosen ? Colors.faded(Theme.text, 0.16) : "transparent"
                    radius: Metrics.radiusSmall
                }
                contentItem: Item {
                    implicitWidth: mark.width + (mark.visible ? Metrics.space1 : 0) + widest.width

                    Symbol {
                        id: mark

                        anchors.verticalCenter: parent.verticalCenter
                        name: segment.symbol
                        size: visible ? Metrics.textBody : 0
                        visible: segment.symbol !== ""
                    }
                    PlainLabel {
                        anchors.horizontalCenterOffset: mark.visible ? (mark.width + Metrics.space1) / 2 : 0
                        anchors.centerIn: parent
                        text: segment.text
                        weight: segment.isChosen ? Font.DemiBold : Font.Normal
                    }
                    // nothing moves when another one is chosen
                    TextMetrics {
                        id: widest

                        font.family: Theme.family
                        font.pixelSize: Metrics.textBody
                        font.weight: Font.DemiBold
                        text: segment.text
                    }
                }

                Accessible.onPressAction: root.choose(index)
                Accessible.onToggleAction: root.choose(index)
                Keys.onEnterPressed: root.choose(index)
                Keys.onLeftPressed: root.choose(index - 1)
                Keys.onReturnPressed: root.choose(index)
                Keys.onRightPressed: root.choose(index + 1)
                onClicked: root.choose(index)
                onToggled: checked = Qt.binding(() => isChosen)

                FocusRing {
                    shown: segment.visualFocus
                }
            }
        }
    }
}
