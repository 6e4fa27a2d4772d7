import QtQuick
import QtQuick.Controls.Basic as Basic
import Kestrel.App
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

    Basic.BusyIndicator {
        anchors.horizontalCenter: parent.horizontalCenter
        visible: root.model.isSigningIn && Theme.motionAllowed
        running: visible
        scale: 0.7
        Accessible.role: Accessible.Animation
        Accessible.name: qsTrId("settings.accounts.signing_in")
    }

    Symbol {
        anchors.horizontalCenter: parent.horizontalCenter
        visible: root.model.isSigningIn && !Theme.motionAllowed
        name: "hourglass"
        size: 20
        Accessible.role: Accessible.Animation
        Accessible.name: qsTrId("settings.accounts.signing_in")
        color: Theme.secondaryText
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
