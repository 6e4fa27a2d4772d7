import QtQuick
import Kestrel.Ui

/// Rows that belong together, on a card with a title above.
Column {
    id: root

    property string title
    default property alias rows: rows.data
    property alias verticalPadding: rows.topPadding

    spacing: Metrics.space2

    PlainLabel {
        Accessible.name: text
        Accessible.role: Accessible.Heading
        leftPadding: Metrics.space1
        text: root.title
        visible: text !== ""
        weight: Font.DemiBold
        width: parent.width
        wrapMode: Text.Wrap
    }
    SmoothRectangle {
        color: Theme.card
        edge: Theme.hairline
        height: rows.height
        radius: Metrics.radiusButton
        width: parent.width

        Column {
            id: rows

            bottomPadding: topPadding
            width: parent.width
        }
    }
}
