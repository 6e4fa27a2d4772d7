import QtQuick
import Kestrel.Ui

/// One of our own symbols. It says nothing to a screen reader: what it stands beside does.
SymbolItem {
    id: root

    color: Theme.text
    size: Metrics.textBody
}
