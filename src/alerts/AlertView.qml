import QtQuick
import Kestrel.Alerts
import Kestrel.Ui
import Kestrel.Menubar

/// The card of one meeting, with room around it for its shadow.
Item {
    id: root

    required property AlertCard card
    readonly property MeetingItem item: card.item
    readonly property color tint: item.hasTint ? item.tint : Theme.accent
    /// What is drawn as the card; presses beside it belong to the windows below.
    readonly property rect body: Qt.rect(Metrics.space7, 18, 360, glass.height)
    readonly property real radius: Metrics.radiusAlert

    implicitWidth: body.width + Metrics.space7 * 2
    implicitHeight: body.height + 18 + 38
    Accessible.role: Accessible.AlertMessage
    Accessible.name: item.title

    Shortcut {
        sequences: [StandardKey.Cancel]
        onActivated: root.card.dismiss()
    }
    Connections {
        target: root.card

        function onIsShownChanged() {
            // without a compositor nothing lies behind a card that fades in but black
            if (root.card.isShown && Theme.motionAllowed && Theme.composited)
                arrival.restart();
            else
                arrival.complete();
        }
    }
    ParallelAnimation {
        id: arrival

        NumberAnimation {
            target: glass
            property: "opacity"
            from: 0
            to: 1
            duration: Metrics.moveDuration
            easing.type: Easing.OutCubic
        }
        NumberAnimation {
            target: glass
            property: "y"
            from: root.body.y + Metrics.space2
            to: root.body.y
            duration: Metrics.moveDuration
            easing.type: Easing.OutCubic
        }
    }

    MouseArea {
        anchors.fill: glass
        onPressed: root.card.beginDrag()
        onPositionChanged: root.card.drag()
    }

    GlassCard {
        id: glass

        x: root.body.x
        y: root.body.y
        width: root.body.width
        padding: Metrics.space4
        // without a compositor the window is cut to shape, and what lies outside of a drawn corner would be black
        radius: Theme.composited ? root.radius : 0
        tint: root.tint
        tinted: true

        CalendarStripe {
            id: stripe

            y: 2
            width: 4
            height: Math.max(28, details.height - 4)
            colorHex: root.item.calendarColorHex
            fallback: root.tint
        }

        Column {
            id: details

            x: stripe.width + Metrics.space3
            width: glass.width - glass.padding * 2 - x
            spacing: Metrics.space3

            Item {
                width: parent.width
                height: Math.max(pill.height, dismissal.height)

                CountdownPill {
                    id: pill

                    anchors.verticalCenter: parent.verticalCenter
                    countdown: root.item.countdown
                }
                IconButton {
                    id: dismissal

                    anchors.verticalCenter: parent.verticalCenter
                    anchors.right: parent.right
                    symbol: "xmark"
                    padding: Metrics.space2
                    radius: height / 2
                    accessibleName: qsTrId("alert.dismiss")
                    color: Theme.text
                    background: GlassSurface {
                        radius: dismissal.radius
                        tint: Theme.text
                        tinted: dismissal.hovered
                    }
                    onClicked: root.card.dismiss()
                }
            }

            PlainLabel {
                width: parent.width
                text: root.item.title
                size: Metrics.textTitle
                rounded: true
                weight: Font.DemiBold
                wrapMode: Text.Wrap
                maximumLineCount: 3
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }

            AlertTimeLine {
                width: parent.width
                item: root.item
            }

            MeetingLocationLabel {
                width: Math.min(implicitWidth, parent.width)
                visible: root.item.location !== ""
                item: root.item
            }

            AlertActions {
                width: parent.width
                visible: root.item.canJoin || root.item.canOpenInCalendar
                item: root.item
            }
        }
    }
}
