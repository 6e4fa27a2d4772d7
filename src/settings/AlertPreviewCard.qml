import QtQuick
import Kestrel.Alerts
import Kestrel.Menubar
import Kestrel.Ui

/// A sample of the alert card, drawn as the real one is, before something that shines through it. Nothing on it
/// can be pressed.
Item {
    id: root

    required property MeetingItem sample

    Accessible.name: qsTrId("settings.preview.title") + ": " + root.sample.summary
    Accessible.role: Accessible.Graphic
    implicitHeight: caption.height + card.height + 2 * Metrics.space3 + Metrics.space7 + Metrics.shadowDrop

    PlainLabel {
        id: caption

        text: qsTrId("settings.preview.title")
        x: Metrics.space4
        y: Metrics.space3
    }
    Item {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 1
        anchors.top: caption.bottom
        anchors.topMargin: Metrics.space3
        clip: true
        width: parent.width - 2
        x: 1

        // round below alone, as the section's card is
        Rectangle {
            anchors.fill: parent
            anchors.topMargin: -radius
            radius: Metrics.radiusButton - 1

            gradient: Gradient {
                GradientStop {
                    color: Theme.isDark ? "#26303f" : "#a9c3d9"
                    position: 0
                }
                GradientStop {
                    color: Theme.isDark ? "#3f3350" : "#d9c9e4"
                    position: 1
                }
            }
        }
        AlertBody {
            id: card

            anchors.centerIn: parent
            enabled: false
            item: root.sample
        }
    }
}
