import QtQuick
import Kestrel.App
import Kestrel.Settings
import Kestrel.Ui

/// What the agenda shows while no account is connected: what Kestrel is for, the way in, and a word on privacy.
Column {
    id: root

    required property OnboardingModel model

    spacing: Metrics.space3
    topPadding: Metrics.space2
    bottomPadding: Metrics.space2

    BrandHeader {
        anchors.horizontalCenter: parent.horizontalCenter
        compact: false
    }

    PlainLabel {
        width: parent.width
        text: qsTrId("onboarding.intro")
        Accessible.role: Accessible.StaticText
        Accessible.name: text
        size: Metrics.textSmall
        color: Theme.secondaryText
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignHCenter
    }

    Pressable {
        id: connectButton
        anchors.horizontalCenter: parent.horizontalCenter
        accessibleName: qsTrId("onboarding.connect_google")
        padding: Metrics.space2
        leftPadding: Metrics.space3
        rightPadding: Metrics.space3
        contentItem: Row {
            spacing: Metrics.space2
            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                name: "person.crop.circle.badge.plus"
                size: 18
                color: Theme.accent
            }
            PlainLabel {
                anchors.verticalCenter: parent.verticalCenter
                text: connectButton.accessibleName
                rounded: true
                weight: Font.Medium
                color: Theme.accent
            }
        }
        background: Rectangle {
            radius: Metrics.radiusButton
            color: Qt.alpha(Theme.accent, 0.12)
        }
        onClicked: root.model.connectAccount()
    }

    WorkingSymbol {
        anchors.horizontalCenter: parent.horizontalCenter
        visible: root.model.isSigningIn
        accessibleName: qsTrId("settings.accounts.signing_in")
        size: 20
    }

    PlainLabel {
        width: parent.width
        visible: text !== ""
        text: root.model.error
        size: Metrics.textSmall
        color: Theme.error
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignHCenter
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }

    PlainLabel {
        width: parent.width
        text: qsTrId("onboarding.privacy_blurb")
        Accessible.role: Accessible.StaticText
        Accessible.name: text
        size: Metrics.textSmall
        color: Theme.tertiaryText
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignHCenter
    }
}
