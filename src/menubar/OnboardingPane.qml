import QtQuick
import Kestrel.Menubar
import Kestrel.Ui

/// What is shown while there is no account; comes from elsewhere, and is there only while it is needed.
Flickable {
    id: root

    required property AgendaModel agenda
    required property url source
    required property QtObject model
    readonly property bool isNeeded: !agenda.hasAccounts

    boundsBehavior: Flickable.StopAtBounds
    contentHeight: content.height
    interactive: contentHeight > height
    visible: isNeeded

    onIsNeededChanged: load()
    Component.onCompleted: load()

    function load() {
        if (isNeeded && source.toString() !== "")
            content.setSource(source, { model: root.model });
        else
            content.source = "";
    }

    Loader {
        id: content

        x: Metrics.space3
        width: root.width - 2 * Metrics.space3
    }
}
