import QtQuick
import Kestrel.Ui

/// The time to a meeting, in a word or two and in the colour of how near it is. Lets the countdown run
/// while it can be seen, and only then.
Item {
    id: root

    required property Countdown countdown
    readonly property bool isSeen: visible && Window.visibility !== Window.Hidden
    readonly property color tint: countdown.nearness === Countdown.Now ? Theme.meetingNow
        : countdown.nearness === Countdown.Soon ? Theme.meetingSoon : Theme.meetingLater

    Accessible.name: countdown.text
    Accessible.role: Accessible.StaticText
    implicitHeight: row.height + Metrics.space1 * 2
    implicitWidth: row.width + Metrics.space2 * 2

    Component.onCompleted: countdown.isRunning = isSeen
    Component.onDestruction: if (countdown)
        countdown.isRunning = false
    onIsSeenChanged: countdown.isRunning = isSeen

    Behavior on implicitWidth {
        enabled: Theme.motionAllowed

        NumberAnimation {
            duration: 400
            easing.type: Easing.InOutQuad
        }
    }

    GlassSurface {
        anchors.fill: parent
        radius: Metrics.radiusButton
        tint: root.tint
        tinted: true

        Behavior on tint {
            enabled: Theme.motionAllowed

            ColorAnimation {
                duration: 400
                easing.type: Easing.InOutQuad
            }
        }
    }
    Row {
        id: row

        anchors.centerIn: parent
        spacing: Metrics.space1

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: "timer"
            size: Metrics.textBody
        }
        PlainLabel {
            Accessible.ignored: true
            anchors.verticalCenter: parent.verticalCenter
            rounded: true
            tabular: true
            text: root.countdown.text
            weight: Font.DemiBold
        }
    }
}
