import QtQuick
import Kestrel.Menubar
import Kestrel.Ui

/// The small capitals above a section.
PlainLabel {
    id: root

    bottomPadding: Metrics.space1
    font.capitalization: Font.AllUppercase
    font.letterSpacing: 0.6
    size: Metrics.textSmall
    rounded: true
    weight: Font.DemiBold
    color: Theme.secondaryText

    Accessible.role: Accessible.Heading
    Accessible.name: text
}
