import QtQuick
import Kestrel.Ui

/// A sentence or two below what they explain.
PlainLabel {
    Accessible.name: text
    Accessible.role: Accessible.StaticText
    color: Theme.secondaryText
    size: Metrics.textSmall
    visible: text !== ""
    wrapMode: Text.Wrap
}
