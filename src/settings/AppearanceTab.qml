import QtQuick
import Kestrel.Settings
import Kestrel.Ui

/// The language, and how cards look.
Column {
    id: root

    required property SettingsModel settings
    readonly property AppearanceSettings appearance: settings.appearance

    spacing: Metrics.space4

    Component.onCompleted: appearance.renewSample()

    FormSection {
        title: qsTrId("settings.section.language")
        width: parent.width

        FormRow {
            help: qsTrId("settings.language.help")
            label: qsTrId("settings.language")

            MenuPicker {
                accessibleName: qsTrId("settings.language")
                chosenIndex: root.appearance.language
                help: qsTrId("settings.language.help")
                labels: root.appearance.languages

                onChosen: index => root.appearance.language = index
            }
        }
    }
    FormSection {
        title: qsTrId("settings.section.appearance")
        width: parent.width

        ToggleRow {
            checked: root.settings.preferences.reduceTransparency
            label: qsTrId("settings.reduce_transparency")

            onToggled: on => root.settings.preferences.reduceTransparency = on
        }
    }
    FormSection {
        title: qsTrId("settings.section.preview")
        width: parent.width

        AlertPreviewCard {
            sample: root.appearance.sample
            width: parent.width
        }
    }
}
