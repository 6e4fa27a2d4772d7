import QtQuick
import Kestrel.Meet
import Kestrel.Ui

/// A dark square with one large symbol or emoji.
Item {
    id: root

    required property MeetHUDPresenter hud
    readonly property real radius: 28

    implicitHeight: 180
    implicitWidth: 180
    opacity: hud.opacity
    Accessible.role: Accessible.Notification
    Accessible.name: hud.text

    SmoothRectangle {
        anchors.fill: parent
        // without a compositor the window is cut to shape
        radius: Theme.composited ? root.radius : 0
        color: Qt.rgba(0, 0, 0, Theme.glassAllowed ? 0.82 : 1)
    }
    Symbol {
        anchors.centerIn: parent
        name: root.hud.symbol
        size: 120 // a drawing fills some 17 of the 24 parts of its grid: 86 pixels
        color: "white"
    }
    Text {
        anchors.centerIn: parent
        Accessible.ignored: true
        text: root.hud.emoji
        color: "white"
        // the desktop's choice of a colour font; the fonts that stand in for missing letters may draw it in black
        font.family: "emoji"
        font.pixelSize: 100
        renderType: Text.NativeRendering
        textFormat: Text.PlainText
    }
}
