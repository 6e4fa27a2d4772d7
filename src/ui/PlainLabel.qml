import QtQuick
import Kestrel.Ui

/// Text that is shown as it is: what looks like markup stays letters. Long ones end in an ellipsis.
Text {
    id: root

    property int size: Metrics.textBody
    property bool rounded: false
    property int weight: Font.Normal
    /// As wide as with any other digits, so that nothing beside a figure that counts moves.
    property bool tabular: false

    color: Theme.text
    elide: Text.ElideRight
    font.family: rounded ? Theme.roundedFamily : Theme.family
    font.pixelSize: size
    font.weight: weight
    renderType: Text.NativeRendering
    textFormat: Text.PlainText
    width: tabular ? Theme.widthForAnyDigits(text, font) : undefined
}
