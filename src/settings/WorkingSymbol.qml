import QtQuick
import Kestrel.Ui

/// Something is under way: turns while it can be seen, or stands still where motion is reduced.
Symbol {
    id: root

    required property string accessibleName

    Accessible.ignored: false
    Accessible.name: root.accessibleName
    Accessible.role: Accessible.Animation
    color: Theme.secondaryText
    name: Theme.motionAllowed ? "arrow.clockwise" : "hourglass"
    size: Metrics.textSubtitle

    RotationAnimation on rotation {
        duration: 1000
        from: 0
        loops: Animation.Infinite
        running: root.visible && Theme.motionAllowed && root.Window.visibility !== Window.Hidden
        to: 360
    }
}
