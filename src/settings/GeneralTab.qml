import QtQuick
import Kestrel.Settings
import Kestrel.Ui

/// When alerts come and go and where, and how Kestrel behaves.
Column {
    id: root

    required property SettingsModel settings
    readonly property GeneralSettings general: settings.general
    readonly property Preferences preferences: settings.preferences

    spacing: Metrics.space4

    FormSection {
        title: qsTrId("settings.section.timing")
        width: parent.width

        FormRow {
            label: qsTrId("settings.lead_time")

            SegmentedPicker {
                accessibleName: qsTrId("settings.lead_time")
                currentIndex: root.general.leadTime
                labels: root.general.leadTimes

                onChosen: index => root.general.leadTime = index
            }
        }
        FormRow {
            label: qsTrId("settings.auto_dismiss")

            Stepper {
                accessibleName: qsTrId("settings.auto_dismiss")
                shownText: root.general.autoDismissText
                stepSize: root.general.autoDismissStep
                to: Math.max(root.general.longestAutoDismiss, root.general.autoDismissSeconds)
                value: root.general.autoDismissSeconds

                onValueModified: root.general.autoDismissSeconds = value
            }
        }
    }
    FormSection {
        title: qsTrId("settings.section.position")
        width: parent.width

        FormRow {
            label: qsTrId("settings.position")

            MenuPicker {
                accessibleName: qsTrId("settings.position")
                chosenIndex: root.general.position
                labels: root.general.positions

                onChosen: index => root.general.position = index
            }
        }
    }
    FormSection {
        title: qsTrId("settings.section.behaviour")
        width: parent.width

        ToggleRow {
            checked: root.general.launchAtLogin
            label: qsTrId("settings.launch_at_login")

            onToggled: on => root.general.launchAtLogin = on
        }
        ToggleRow {
            checked: root.preferences.stackSimultaneousAlerts
            label: qsTrId("settings.stack_alerts")

            onToggled: on => root.preferences.stackSimultaneousAlerts = on
        }
        ToggleRow {
            checked: root.preferences.clickOutsideToDismiss
            label: qsTrId("settings.click_outside_dismiss")

            onToggled: on => root.preferences.clickOutsideToDismiss = on
        }
    }
}
