import QtQuick
import Kestrel.Settings
import Kestrel.Ui

/// The settings: the tabs above, and below them the one that is chosen. As high as that one needs.
Rectangle {
    id: root

    required property SettingsModel settings

    Accessible.name: Window.window?.title ?? ""
    Accessible.role: Accessible.Pane
    color: Theme.surface
    implicitHeight: strip.height + 1 + column.height + 2 * Metrics.space4
    implicitWidth: Math.max(600, strip.implicitWidth)

    // no shortcut: X11 makes another key of Tab with Shift, which Qt finds under none of its names
    Keys.onBacktabPressed: event => {
        event.accepted = event.modifiers & Qt.ControlModifier;
        if (event.accepted)
            root.step(-1);
    }
    Keys.onEscapePressed: root.Window.window.close()

    function showTab() {
        const files = ["GeneralTab.qml", "AppearanceTab.qml", "AccountsTab.qml", "MeetingsTab.qml",
                       "NotificationsTab.qml", "AboutTab.qml"];
        page.setSource(files[root.settings.tab], { settings: root.settings });
        pane.contentY = 0;
    }
    function step(by) {
        const count = root.settings.tabTitles.length;
        root.settings.tab = (root.settings.tab + by + count) % count;
        // what had the keyboard is gone
        strip.focusChosen();
    }

    Component.onCompleted: showTab()

    Connections {
        target: root.settings

        function onTabChanged() {
            root.showTab();
        }
    }
    Shortcut {
        sequences: [StandardKey.NextChild, "Ctrl+PgDown"]
        onActivated: root.step(1)
    }
    Shortcut {
        sequences: ["Ctrl+PgUp"]
        onActivated: root.step(-1)
    }
    Shortcut {
        sequences: [StandardKey.Close]
        onActivated: root.Window.window.close()
    }

    TabStrip {
        id: strip

        anchors.horizontalCenter: parent.horizontalCenter
        currentIndex: root.settings.tab
        symbols: root.settings.tabSymbols
        titles: root.settings.tabTitles

        onChosen: index => root.settings.tab = index
    }
    Rectangle {
        anchors.top: strip.bottom
        color: Theme.hairline
        height: 1
        width: parent.width
    }
    ScrollPane {
        id: pane

        anchors.bottom: parent.bottom
        anchors.top: strip.bottom
        anchors.topMargin: 1
        contentHeight: column.height + 2 * Metrics.space4
        width: parent.width

        Column {
            id: column

            spacing: Metrics.space4
            width: root.width - 2 * Metrics.space4
            x: Metrics.space4
            y: Metrics.space4

            ErrorText {
                text: root.settings.unsavedText
                width: parent.width
            }
            Loader {
                id: page

                width: parent.width
            }
        }
    }
}
