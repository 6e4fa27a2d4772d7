import QtQuick
import Kestrel.Menubar
import Kestrel.Ui

/// How much of a running meeting has passed, and the minutes that are left.
ProgressRing {
    id: root

    required property OngoingProgress progress

    implicitWidth: 64
    implicitHeight: 64
    fraction: progress.fraction
    glides: Theme.motionAllowed
    color: Theme.meetingNow
    trackColor: Colors.faded(Theme.text, Theme.isDark ? 0.16 : 0.1)

    Accessible.role: Accessible.StaticText
    Accessible.name: progress.accessibleText

    Column {
        anchors.centerIn: parent
        width: parent.width - 2 * Metrics.space1

        PlainLabel {
            Accessible.ignored: true
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: root.progress.minutesLeft
            size: Metrics.textFigure
            fontSizeMode: Text.HorizontalFit
            rounded: true
            tabular: true
            weight: Font.Bold
        }
        PlainLabel {
            Accessible.ignored: true
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: qsTrId("MIN LEFT")
            size: Metrics.textTiny
            rounded: true
            weight: Font.DemiBold
            font.letterSpacing: 0.6
            color: Theme.secondaryText
        }
    }
}
