import QtQuick
import Kestrel.Ui

/// What went wrong, for all who can see it and for those who hear it.
HelpText {
    id: root

    Accessible.role: Accessible.AlertMessage
    color: Theme.error
}
