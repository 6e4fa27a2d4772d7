import QtQuick
import Kestrel.Settings
import Kestrel.Ui

/// One account: how its meetings open, its calendars, the way out. Its calendars are read when it is shown.
FormSection {
    id: root

    required property AccountItem item

    Component.onCompleted: item.load()

    Item {
        height: 52
        width: root.width

        Symbol {
            id: face

            anchors.verticalCenter: parent.verticalCenter
            color: Theme.accent
            name: "person.crop.circle.fill"
            size: 26
            x: Metrics.space4
        }
        PlainLabel {
            Accessible.name: text
            Accessible.role: Accessible.Heading
            anchors.left: face.right
            anchors.leftMargin: Metrics.space3
            anchors.right: parent.right
            anchors.rightMargin: Metrics.space4
            anchors.verticalCenter: parent.verticalCenter
            text: root.item.name
            weight: Font.DemiBold
        }
    }
    FormRow {
        error: root.item.signInError
        help: root.item.isSigningIn ? qsTrId("settings.accounts.signing_in")
                                    : qsTrId("settings.accounts.signed_out.help")
        label: qsTrId("settings.accounts.signed_out")
        visible: root.item.isSignedOut

        TextButton {
            enabled: !root.item.isSigningIn
            text: qsTrId("settings.accounts.sign_in_again")
            toolTip: text + ": " + root.item.name

            onClicked: root.item.signInAgain()
        }
    }
    FormRow {
        help: qsTrId("settings.accounts.launch_mode.help")
        label: qsTrId("settings.accounts.launch_mode")

        SegmentedPicker {
            accessibleName: qsTrId("settings.accounts.launch_mode")
            currentIndex: root.item.launchMode
            help: qsTrId("settings.accounts.launch_mode.help")
            labels: root.item.launchModes
            symbols: ["", "rectangle.on.rectangle"]

            onChosen: index => root.item.launchMode = index
        }
    }
    CalendarDisclosure {
        item: root.item
        width: parent.width
    }
    FormRow {
        error: root.item.signOutError

        TextButton {
            enabled: !root.item.isSigningOut
            text: qsTrId("settings.accounts.sign_out")
            toolTip: qsTrId("settings.accounts.sign_out") + ": " + root.item.name

            onClicked: root.item.signOut()
        }
    }
}
