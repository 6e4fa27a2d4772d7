import QtQuick
import Kestrel.Settings
import Kestrel.Ui

/// Whether alerts can be heard, how, and how often they come.
Column {
    id: root

    required property SettingsModel settings
    readonly property NotificationSettings notifications: settings.notifications

    spacing: Metrics.space4

    FormSection {
        title: qsTrId("settings.section.notifications")
        width: parent.width

        ToggleRow {
            checked: root.settings.preferences.playSoundOnAlert
            label: qsTrId("settings.play_sound")

            onToggled: on => root.settings.preferences.playSoundOnAlert = on
        }
        ToggleRow {
            checked: root.settings.preferences.secondaryAlertOneMinute
            label: qsTrId("settings.secondary_alert")

            onToggled: on => root.settings.preferences.secondaryAlertOneMinute = on
        }
    }
    FormSection {
        title: qsTrId("settings.section.sound")
        verticalPadding: Metrics.space1
        width: parent.width

        Repeater {
            id: sounds

            model: root.notifications.sounds

            delegate: SoundRow {
                required property int index
                required property string modelData

                isSelected: root.notifications.sound === index
                sound: modelData
                width: root.width

                onPlayed: root.notifications.play(index)
                onSelected: root.notifications.choose(index)
                onStepped: by => {
                    const next = Math.max(0, Math.min(index + by, sounds.count - 1));
                    sounds.itemAt(next).takeFocus();
                    if (next !== index)
                        root.notifications.choose(next);
                }
            }
        }
    }
}
