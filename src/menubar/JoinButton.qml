import QtQuick
import Kestrel.Menubar
import Kestrel.Ui

/// Joins the meeting. Prominent: green, on cards; compact: its symbol alone, in rows.
Pressable {
    id: root

    required property MeetingItem item
    property bool compact: false
    property bool prominent: false

    /// After the link was handed over.
    signal tapped

    readonly property color ink: prominent ? "white" : Theme.text

    accessibleName: item.joinText
    radius: compact ? Metrics.radiusControl : Metrics.radiusButton
    toolTip: compact ? item.joinText : ""
    leftPadding: compact ? Metrics.space2 : Metrics.space3
    rightPadding: leftPadding
    topPadding: compact ? Metrics.space1 : Metrics.space2
    bottomPadding: topPadding
    implicitHeight: Math.max(compact ? 24 : 32, implicitContentHeight + topPadding + bottomPadding)

    onClicked: {
        root.item.join();
        root.tapped();
    }

    background: SmoothRectangle {
        color: root.prominent ? Theme.joinGreen
            : Colors.glass(Theme.card, root.item.hasTint ? root.item.tint : Theme.accent, true, Theme.glassAllowed)
        edge: root.prominent ? "transparent" : Theme.hairline
        radius: root.radius

        Repeater {
            // a soft edge, 18 % black at its darkest, 2 px down
            model: root.prominent ? 6 : 0

            Rectangle {
                required property int index

                anchors.fill: parent
                anchors.topMargin: 2 - index
                anchors.bottomMargin: -2 - index
                anchors.leftMargin: -index
                anchors.rightMargin: -index
                radius: root.radius + index
                color: Qt.rgba(0, 0, 0, 0.032)
                z: -1
            }
        }
    }

    contentItem: Item {
        implicitWidth: symbol.width + (root.compact ? 0 : Metrics.space1 + label.implicitWidth)
        implicitHeight: Math.max(symbol.height, label.implicitHeight)

        Symbol {
            id: symbol

            anchors.verticalCenter: parent.verticalCenter
            name: root.item.platformSymbol
            size: 13
            color: root.ink
        }
        Loader {
            id: label

            anchors.verticalCenter: parent.verticalCenter
            anchors.left: symbol.right
            anchors.leftMargin: Metrics.space1
            anchors.right: parent.right
            active: !root.compact
            sourceComponent: PlainLabel {
                text: root.item.joinText
                rounded: true
                weight: root.prominent ? Font.DemiBold : Font.Normal
                color: root.ink
            }
        }
    }
}
