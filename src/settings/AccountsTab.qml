import QtQuick
import Kestrel.Settings
import Kestrel.Ui

/// The accounts, each with its calendars, and the way to another one.
Column {
    id: root

    required property SettingsModel settings
    readonly property AccountsModel accounts: settings.accounts

    spacing: Metrics.space4

    FormSection {
        visible: root.accounts.isEmpty
        width: parent.width

        FormRow {
            label: qsTrId("settings.accounts.none_connected")
        }
    }
    Repeater {
        model: root.accounts

        delegate: GoogleAccountRow {
            width: root.width
        }
    }
    Column {
        spacing: Metrics.space2
        width: parent.width

        Row {
            spacing: Metrics.space3

            TextButton {
                enabled: !root.accounts.isBusy
                symbol: "plus.circle"
                text: qsTrId("settings.accounts.add_google")

                onClicked: root.accounts.addGoogle()
            }
            WorkingSymbol {
                accessibleName: qsTrId("settings.accounts.signing_in")
                anchors.verticalCenter: parent.verticalCenter
                visible: root.accounts.isBusy
            }
            HelpText {
                anchors.verticalCenter: parent.verticalCenter
                text: root.accounts.isBusy ? qsTrId("settings.accounts.signing_in") : ""
            }
        }
        ErrorText {
            text: root.accounts.error
            width: parent.width
        }
    }
    Row {
        spacing: Metrics.space2

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.tertiaryText
            name: "hourglass"
        }
        PlainLabel {
            Accessible.name: text
            Accessible.role: Accessible.StaticText
            color: Theme.tertiaryText
            text: qsTrId("settings.accounts.microsoft_coming_soon")
        }
    }
}
