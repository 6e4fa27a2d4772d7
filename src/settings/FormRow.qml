import QtQuick
import Kestrel.Ui

/// One line of a section: what it is about, a word of help below, and the control at the end. A hairline
/// parts it from the row above.
Item {
    id: root

    property string label
    property string help
    property string error
    default property alias control: holder.data

    readonly property real wantedHeight: Math.max(texts.height, holder.height) + 2 * Metrics.space2

    implicitHeight: Math.max(44, wantedHeight)
    width: parent?.width ?? 0

    Rectangle {
        anchors.right: parent.right
        color: Theme.hairline
        height: 1
        visible: root.y > 0
        width: parent.width - Metrics.space4
    }
    Column {
        id: texts

        anchors.verticalCenter: parent.verticalCenter
        spacing: 2
        width: parent.width - 2 * Metrics.space4 - (holder.width > 0 ? holder.width + Metrics.space4 : 0)
        x: Metrics.space4

        PlainLabel {
            Accessible.name: text
            Accessible.role: Accessible.StaticText
            text: root.label
            visible: text !== ""
            width: parent.width
            wrapMode: Text.Wrap
        }
        HelpText {
            text: root.help
            width: parent.width
        }
        ErrorText {
            text: root.error
            width: parent.width
        }
    }
    Item {
        id: holder

        anchors.right: parent.right
        anchors.rightMargin: Metrics.space4
        anchors.verticalCenter: parent.verticalCenter
        height: childrenRect.height
        width: childrenRect.width
    }
}
