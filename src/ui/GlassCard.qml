import QtQuick
import Kestrel.Ui

/// Its content on the glass look, as wide as it is made. The shadow lies outside of it: whoever shows a card
/// leaves Metrics.shadowReach around it, and Metrics.shadowDrop more below.
Item {
    id: root

    property color tint: Theme.accent
    property bool tinted: false
    property real radius: Metrics.radiusCard
    property real padding: Metrics.space4
    property bool shadow: true
    default property alias content: holder.data

    implicitHeight: holder.childrenRect.height + padding * 2
    implicitWidth: holder.childrenRect.width + padding * 2

    SoftShadow {
        anchors.fill: parent
        radius: root.radius
        visible: root.shadow && Theme.composited
    }
    GlassSurface {
        anchors.fill: parent
        radius: root.radius
        tint: root.tint
        tinted: root.tinted
    }
    Item {
        id: holder

        anchors.fill: parent
        anchors.margins: root.padding
    }
}
