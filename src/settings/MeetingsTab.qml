import QtQuick
import Kestrel.Settings
import Kestrel.Ui

/// Shortcuts, calls in the browser, and the window that meetings open in.
Column {
    id: root

    required property SettingsModel settings
    readonly property MeetingsSettings meetings: settings.meetings
    readonly property Preferences preferences: settings.preferences

    spacing: Metrics.space4

    FormSection {
        title: qsTrId("settings.section.meetings.shortcut")
        width: parent.width

        ToggleRow {
            checked: root.preferences.enableJoinShortcut
            help: qsTrId("settings.join_shortcut.help")
            label: qsTrId("settings.join_shortcut.label")

            onToggled: on => root.preferences.enableJoinShortcut = on
        }
        ShortcutRow {
            shortcut: root.meetings.joinShortcut
        }
    }
    FormSection {
        title: qsTrId("settings.section.meetings.meet_controls")
        width: parent.width

        ToggleRow {
            checked: root.preferences.enableMeetControls
            help: qsTrId("settings.meet_controls.help")
            label: qsTrId("settings.meet_controls.label")

            onToggled: on => root.preferences.enableMeetControls = on
        }
        BrowserRow {
            browser: root.meetings.browser
        }
        ToggleRow {
            checked: root.preferences.showMeetMicInMenuBar
            help: qsTrId("settings.meet_mic_indicator.help")
            label: qsTrId("settings.meet_mic_indicator.label")

            onToggled: on => root.preferences.showMeetMicInMenuBar = on
        }
        ToggleRow {
            checked: root.preferences.enableStreamDeckBridge
            help: qsTrId("settings.streamdeck_bridge.help")
            label: qsTrId("settings.streamdeck_bridge.label")

            onToggled: on => root.preferences.enableStreamDeckBridge = on
        }
        Repeater {
            model: root.meetings.meetShortcuts

            delegate: ShortcutRow {
                required property ShortcutItem modelData

                shortcut: modelData
            }
        }
    }
    FormSection {
        title: qsTrId("settings.section.meetings.popup")
        width: parent.width

        FormRow {
            error: root.meetings.popupWidth.error
            label: qsTrId("settings.popup.width")

            IntegerField {
                accessibleName: qsTrId("settings.popup.width")
                entry: root.meetings.popupWidth
            }
        }
        FormRow {
            error: root.meetings.popupHeight.error
            label: qsTrId("settings.popup.height")

            IntegerField {
                accessibleName: qsTrId("settings.popup.height")
                entry: root.meetings.popupHeight
            }
        }
        FormRow {
            help: qsTrId("settings.popup.help")

            TextButton {
                text: qsTrId("settings.popup.reset")

                onClicked: root.meetings.resetPopupSize()
            }
        }
    }
}
