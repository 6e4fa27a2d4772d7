import QtQuick
import Kestrel.Menubar
import Kestrel.Ui

/// A piece of a small grey line: a dot before it unless it is the first, a symbol, a text.
Row {
    id: root

    required property string text
    property string symbol
    property bool first: false

    spacing: Metrics.space1

    PlainLabel {
        anchors.verticalCenter: parent.verticalCenter
        visible: !root.first
        text: "·"
        size: Metrics.textSmall
        rounded: true
        color: Theme.secondaryText
    }
    Symbol {
        anchors.verticalCenter: parent.verticalCenter
        visible: root.symbol !== ""
        name: root.symbol
        size: Metrics.textSmall
        color: Theme.secondaryText
    }
    PlainLabel {
        anchors.verticalCenter: parent.verticalCenter
        text: root.text
        size: Metrics.textSmall
        rounded: true
        color: Theme.secondaryText
    }
}
