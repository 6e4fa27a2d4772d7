import QtQuick
import Kestrel.Alerts
import Kestrel.Ui
import Kestrel.Menubar

/// The card of one meeting, with room around it for its shadow.
Item {
    id: root

    required property AlertCard card
    readonly property MeetingItem item: card.item
    /// What is drawn as the card; presses beside it belong to the windows below.
    readonly property rect body: Qt.rect(Metrics.space7, 18, 360, glass.height)
    readonly property real radius: Metrics.radiusAlert

    implicitWidth: body.width + Metrics.space7 * 2
    implicitHeight: body.height + 18 + 38
    Accessible.role: Accessible.Notification
    Accessible.name: item.title
    Accessible.description: item.details

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

    AlertBody {
        id: glass

        x: root.body.x
        y: root.body.y
        width: root.body.width
        // without a compositor the window is cut to shape, and what lies outside of a drawn corner would be black
        radius: Theme.composited ? root.radius : 0
        item: root.item

        onDismissed: root.card.dismiss()
    }
}
