import QtQuick
import Kestrel.Settings
import Kestrel.Ui

/// Whether a browser lets Kestrel drive its calls, and the way to get there. Asks while it can be seen.
FormRow {
    id: root

    required property BrowserStatus browser
    readonly property bool isSeen: visible && Window.visibility !== Window.Hidden

    error: root.browser.error
    help: root.browser.steps
    label: root.browser.text

    Component.onCompleted: browser.isActive = isSeen
    Component.onDestruction: if (browser)
        browser.isActive = false
    onIsSeenChanged: browser.isActive = isSeen

    Row {
        spacing: Metrics.space3

        WorkingSymbol {
            accessibleName: root.browser.installText
            anchors.verticalCenter: parent.verticalCenter
            visible: root.browser.isInstalling
        }
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.success
            name: root.browser.symbol
            size: Metrics.textFigure
            visible: root.browser.isConnected
        }
        TextButton {
            text: root.browser.installText
            visible: root.browser.canInstall

            onClicked: root.browser.install()
        }
    }
}
