import QtQuick
import Kestrel.Ui
import Kestrel.Menubar

/// From when to when, how long, and where online. A platform whose name is too long goes on a line of its own.
Flow {
    id: root

    required property MeetingItem item

    spacing: Metrics.space2
    Accessible.role: Accessible.StaticText
    Accessible.name: item.details + ", " + item.platformName

    component Words: PlainLabel {
        size: Metrics.textSmall
        rounded: true
    }

    Row {
        spacing: Metrics.space2

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: "clock"
            size: Metrics.textSmall
        }
        Words {
            text: root.item.startText
        }
        Words {
            text: "–"
        }
        Words {
            text: root.item.endText
        }
        Words {
            text: "·"
            color: Theme.secondaryText
        }
        Words {
            text: root.item.durationText
            color: Theme.secondaryText
        }
    }
    Row {
        spacing: Metrics.space2

        Symbol {
            id: symbol

            anchors.verticalCenter: parent.verticalCenter
            name: root.item.platformSymbol
            size: Metrics.textSmall
        }
        Words {
            width: Math.min(implicitWidth, root.width - symbol.width - parent.spacing)
            text: root.item.platformName
        }
    }
}
