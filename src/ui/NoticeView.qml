import QtQuick
import Kestrel.Ui

/// A notice with its buttons, the default one at the right, and room around it for its shadow.
Item {
    id: root

    required property QuickModalNotice notice
    /// What is drawn as the notice; presses beside it belong to the windows below.
    readonly property rect body: Qt.rect(Metrics.space7, 18, 420, card.height)
    readonly property real radius: Metrics.radiusAlert
    readonly property real roomForText: notice.maximumHeight - 18 - 38 - card.padding * 2 - content.spacing - actions.height

    implicitWidth: body.width + Metrics.space7 * 2
    implicitHeight: body.height + 18 + 38
    Accessible.role: Accessible.Dialog
    Accessible.name: notice.title
    Accessible.description: notice.text
    Keys.onEnterPressed: notice.choose(0)
    Keys.onReturnPressed: notice.choose(0)

    GlassCard {
        id: card

        x: root.body.x
        y: root.body.y
        width: root.body.width
        padding: 20
        // without a compositor the window is cut to shape, and what lies outside of a drawn corner would be black
        radius: Theme.composited ? root.radius : 0

        MouseArea {
            width: content.width
            height: content.height
            onPressed: root.notice.drag()
        }
        Column {
            id: content

            width: card.width - card.padding * 2
            spacing: Metrics.space4

            Flickable {
                id: scrolled

                width: parent.width
                height: Math.min(message.height, root.roomForText)
                boundsBehavior: Flickable.StopAtBounds
                clip: interactive
                contentHeight: message.height
                interactive: contentHeight > height

                Row {
                    id: message

                    spacing: Metrics.space4

                    Symbol {
                        name: "kestrel"
                        size: 48
                    }
                    Column {
                        width: scrolled.width - 48 - Metrics.space4
                        spacing: Metrics.space2

                        PlainLabel {
                            width: parent.width
                            text: root.notice.title
                            size: Metrics.textTitle
                            rounded: true
                            weight: Font.DemiBold
                            wrapMode: Text.Wrap
                            Accessible.role: Accessible.Heading
                            Accessible.name: text
                        }
                        PlainLabel {
                            width: parent.width
                            text: root.notice.text
                            color: Theme.secondaryText
                            Accessible.role: Accessible.StaticText
                            Accessible.name: text
                            lineHeight: 1.15
                            wrapMode: Text.Wrap
                        }
                    }
                }
            }
            Row {
                id: actions

                anchors.right: parent.right
                layoutDirection: Qt.RightToLeft
                spacing: Metrics.space2

                Repeater {
                    model: root.notice.buttons

                    NoticeButton {
                        required property string modelData
                        required property int index

                        text: modelData
                        prominent: index === 0
                        focus: index === 0
                        onClicked: root.notice.choose(index)
                        Component.onCompleted: {
                            if (index === 0)
                                forceActiveFocus(Qt.PopupFocusReason);
                        }
                    }
                }
            }
        }
    }
}
