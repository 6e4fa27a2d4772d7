import QtQuick
import Kestrel.Settings
import Kestrel.Ui

/// What this is.
Column {
    id: root

    required property SettingsModel settings

    bottomPadding: Metrics.space7
    spacing: Metrics.space2
    topPadding: Metrics.space7

    BrandHeader {
        anchors.horizontalCenter: parent.horizontalCenter
        bottomPadding: Metrics.space3
    }
    PlainLabel {
        Accessible.name: text
        Accessible.role: Accessible.StaticText
        anchors.horizontalCenter: parent.horizontalCenter
        size: Metrics.textSmall
        text: root.settings.versionText
    }
    PlainLabel {
        Accessible.name: text
        Accessible.role: Accessible.StaticText
        anchors.horizontalCenter: parent.horizontalCenter
        color: Theme.secondaryText
        size: Metrics.textSmall
        text: qsTrId("about.copyright")
    }
}
