import QtQuick
import QtQuick.Templates as T
import Kestrel.Settings
import Kestrel.Ui

/// A number that is typed: stored with Enter or when the keyboard goes elsewhere, given up with Escape.
T.TextField {
    id: root

    required property string accessibleName
    required property IntegerEntry entry
    property bool isEdited: false

    Accessible.description: root.entry.error
    Accessible.name: root.accessibleName
    Accessible.role: Accessible.EditableText
    color: Theme.text
    font.family: Theme.family
    font.pixelSize: Metrics.textBody
    horizontalAlignment: Text.AlignRight
    implicitHeight: 30
    implicitWidth: 80
    inputMethodHints: Qt.ImhDigitsOnly
    leftPadding: Metrics.space2
    maximumLength: 12
    renderType: Text.NativeRendering
    rightPadding: Metrics.space2
    selectByMouse: true
    selectedTextColor: Theme.card
    selectionColor: Theme.accent
    verticalAlignment: Text.AlignVCenter

    background: SmoothRectangle {
        color: Colors.faded(Theme.text, 0.04)
        edge: root.entry.error !== "" ? Theme.error : Colors.faded(Theme.text, 0.3)
        radius: Metrics.radiusSmall

        FocusRing {
            shown: root.activeFocus
        }
    }

    // no binding: it would undo what is being typed
    function showStored() {
        root.text = root.entry.text;
        root.isEdited = false;
    }

    Component.onCompleted: showStored()

    Keys.onEscapePressed: event => {
        event.accepted = root.isEdited;
        root.showStored();
        root.entry.discard();
    }
    onActiveFocusChanged: if (activeFocus)
        selectAll()
    onEditingFinished: {
        if (root.isEdited)
            root.entry.enter(root.text);
        if (root.entry.error === "")
            root.showStored();
    }
    onTextEdited: {
        root.isEdited = true;
        root.entry.check(root.text);
    }

    Connections {
        target: root.entry

        function onChanged() {
            if (!root.isEdited || !root.activeFocus && root.entry.error === "")
                root.showStored();
        }
    }
}
