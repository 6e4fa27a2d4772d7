import QtQuick
import Kestrel.Ui

/// One attendee: the answer as a dot, and the name.
Item {
    id: root

    required property string label
    required property int response
    /// A longer name ends in an ellipsis.
    property real maximumWidth: Infinity
    readonly property color dot: {
        switch (response) {
        case AttendeeModel.Accepted:
            return Theme.success;
        case AttendeeModel.Declined:
            return Theme.error;
        case AttendeeModel.Tentative:
            return Theme.meetingSoon;
        case AttendeeModel.NeedsAction:
            return Theme.tertiaryText;
        }
        return Theme.secondaryText;
    }
    /// What the colour says once more, for those who do not see colours.
    readonly property bool isHollow: response === AttendeeModel.NeedsAction || response === AttendeeModel.Unknown

    Accessible.name: label
    Accessible.role: Accessible.StaticText
    implicitHeight: name.height + Metrics.space1 * 2
    implicitWidth: Math.min(maximumWidth, name.implicitWidth + mark.width + Metrics.space1 + Metrics.space2 * 2)

    Component.onCompleted: if (Theme.motionAllowed)
        appearing.start()

    ParallelAnimation {
        id: appearing

        NumberAnimation {
            duration: Metrics.moveDuration
            easing.type: Easing.OutQuad
            from: 0
            property: "opacity"
            target: root
            to: 1
        }
        NumberAnimation {
            duration: Metrics.moveDuration
            easing.type: Easing.OutQuad
            from: 0.92
            property: "scale"
            target: root
            to: 1
        }
    }
    GlassSurface {
        anchors.fill: parent
        radius: Metrics.radiusButton
    }
    Rectangle {
        id: mark

        anchors.left: parent.left
        anchors.leftMargin: Metrics.space2
        anchors.verticalCenter: parent.verticalCenter
        border.color: root.dot
        border.width: 1.5
        color: root.isHollow ? "transparent" : root.dot
        height: 8
        radius: 4
        width: 8
    }
    PlainLabel {
        id: name

        Accessible.ignored: true
        anchors.left: mark.right
        anchors.leftMargin: Metrics.space1
        anchors.right: parent.right
        anchors.rightMargin: Metrics.space2
        anchors.verticalCenter: parent.verticalCenter
        rounded: true
        size: Metrics.textSmall
        text: root.label
    }
}
