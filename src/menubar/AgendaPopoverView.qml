import QtQuick
import Kestrel.Menubar
import Kestrel.Ui

/// The agenda: today's date, the cards of what runs and comes next, the rest of today, the footer; without an
/// account the onboarding and the footer. Never higher than `maximumHeight`: then what is between scrolls.
Item {
    id: root

    required property AgendaModel agenda
    required property url onboardingSource
    required property QtObject onboardingModel
    property real maximumHeight: 1000
    /// Nothing shines through the window's corners: it has to be cut to shape.
    readonly property bool isShaped: !Theme.composited
    readonly property int radius: Metrics.radiusCard

    readonly property real around: 3 * Metrics.space3 + footer.height
                                   + (header.visible ? header.height + Metrics.space3 : 0)
                                   + (signedOut.visible ? signedOut.height + Metrics.space3 : 0)
    readonly property real room: Math.max(maximumHeight - around, 1)
    readonly property real wanted: agenda.hasAccounts ? cards.contentHeight : onboarding.contentHeight

    implicitWidth: 360
    implicitHeight: Math.ceil(around + Math.min(wanted, room))

    Keys.onUpPressed: if (agenda.hasAccounts)
        cards.step(-1)
    Keys.onDownPressed: if (agenda.hasAccounts)
        cards.step(1)

    Accessible.role: Accessible.Pane
    Accessible.name: "Kestrel"

    GlassSurface {
        anchors.fill: parent
        base: Theme.surface
        radius: root.isShaped ? 0 : root.radius
    }
    PlainLabel {
        id: header

        x: Metrics.space3
        y: Metrics.space3
        width: parent.width - 2 * Metrics.space3
        visible: root.agenda.hasAccounts
        text: root.agenda.dateText
        size: Metrics.textSmall
        color: Theme.secondaryText
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    Loader {
        id: signedOut

        active: root.agenda.signedOutText !== ""
        anchors.top: header.bottom
        anchors.topMargin: Metrics.space3
        visible: active
        width: parent.width - 2 * Metrics.space3
        x: Metrics.space3

        sourceComponent: Pressable {
            id: button

            accessibleName: root.agenda.signedOutText + ". " + qsTrId("signed_out.action")
            padding: Metrics.space2

            background: Rectangle {
                color: Qt.alpha(Theme.accent, 0.12)
                radius: button.radius
            }
            contentItem: PlainLabel {
                color: Theme.accent
                size: Metrics.textSmall
                text: button.accessibleName
                wrapMode: Text.Wrap
            }
            onClicked: root.agenda.openAccounts()
        }
    }
    Item {
        anchors.bottom: footer.top
        anchors.bottomMargin: Metrics.space3
        width: parent.width
        height: Math.min(root.wanted, root.room)
        clip: root.wanted > root.room

        // As high as there could be room, not as what it holds: while everything fits all cards are made and
        // their height is exact, and the window's follows it.
        AgendaCards {
            id: cards

            x: Metrics.space3
            width: root.width - 2 * Metrics.space3
            height: root.room
            visible: root.agenda.hasAccounts
            interactive: root.wanted > root.room
            agenda: root.agenda
        }
        OnboardingPane {
            id: onboarding

            anchors.fill: parent
            agenda: root.agenda
            source: root.onboardingSource
            model: root.onboardingModel
        }
    }
    AgendaFooter {
        id: footer

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Metrics.space3
        x: Metrics.space3
        width: parent.width - 2 * Metrics.space3
        agenda: root.agenda
    }
}
