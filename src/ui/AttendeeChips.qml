import QtQuick
import Kestrel.Ui

/// Who takes part: the first few, and behind a chip with their number the others.
FlowRow {
    id: root

    required property AttendeeModel attendees

    spacing: Metrics.space1

    Repeater {
        model: root.attendees

        delegate: AttendeeChip {
            maximumWidth: root.width
        }
    }
    Pressable {
        id: more

        accessibleName: root.attendees.hiddenText
        bottomPadding: Metrics.space1
        leftPadding: Metrics.space2
        radius: Metrics.radiusButton
        rightPadding: Metrics.space2
        topPadding: Metrics.space1
        visible: root.attendees.hiddenText !== ""

        background: GlassSurface {
            radius: more.radius
        }
        contentItem: PlainLabel {
            rounded: true
            size: Metrics.textSmall
            text: root.attendees.hiddenText
        }

        onClicked: root.attendees.expand()
    }
}
