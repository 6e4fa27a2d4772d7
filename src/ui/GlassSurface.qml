import QtQuick
import Kestrel.Ui

/// The glass look as a background: translucent where that is allowed, the same colours in solid otherwise.
SmoothRectangle {
    id: root

    property color tint: Theme.accent
    property bool tinted: false
    /// What is tinted: a card's material unless it lies on a window's.
    property color base: Theme.card

    color: Colors.glass(base, tint, tinted, Theme.glassAllowed)
    edge: Theme.hairline
    radius: Metrics.radiusCard
}
