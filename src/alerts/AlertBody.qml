import QtQuick
import Kestrel.Ui
import Kestrel.Menubar

/// What a card says of its meeting, on glass in the colour of its platform.
GlassCard {
    id: root

    required property MeetingItem item

    signal dismissed

    width: 360
    padding: Metrics.space4
    radius: Metrics.radiusAlert
    tint: item.hasTint ? item.tint : Theme.accent
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
        width: root.width - root.padding * 2 - x
        spacing: Metrics.space3

        Item {
            width: parent.width
            height: Math.max(pill.height, dismissal.height)

            CountdownPill {
                id: pill

                anchors.verticalCenter: parent.verticalCenter
                countdown: root.item.countdown
            }
            Pressable {
                id: dismissal

                accessibleName: qsTrId("alert.dismiss")
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                padding: Metrics.space2
                radius: height / 2

                background: GlassSurface {
                    radius: dismissal.radius
                    tint: Theme.text
                    tinted: dismissal.hovered
                }
                contentItem: Symbol {
                    color: Theme.text
                    name: "xmark"
                    size: Metrics.textSmall
                }

                onClicked: root.dismissed()
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
