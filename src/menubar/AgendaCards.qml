import QtQuick
import Kestrel.Menubar
import Kestrel.Ui

/// The cards under their headers and, below them, the rest of the day. Makes no more cards than fit into its
/// height. Arrow keys move from card to card and on into the rows; what has the focus is scrolled into view.
ListView {
    id: root

    required property AgendaModel agenda
    readonly property ListView rows: (footerItem as LaterToday)?.list ?? null
    property int currentCard: 0
    property int currentRow: 0

    boundsBehavior: Flickable.StopAtBounds
    cacheBuffer: 0
    currentIndex: -1
    keyNavigationEnabled: false
    model: agenda.cards
    spacing: Metrics.space3
    section.property: "section"
    section.delegate: SectionHeader {
        required property string section

        text: section
    }
    delegate: HighlightCard {
        width: ListView.view.width
    }
    footer: LaterToday {
        width: ListView.view.width
        topPadding: root.count > 0 && (root.agenda.isEmpty || list.count > 0) ? Metrics.space3 : 0
        agenda: root.agenda
    }

    Accessible.role: Accessible.List
    Accessible.name: root.agenda.dateText

    Component.onCompleted: putRowsLast()

    function focusCard(index: int) {
        positionViewAtIndex(index, ListView.Contain);
        itemAtIndex(index)?.forceActiveFocus(Qt.TabFocusReason);
    }
    function focusRow(index: int) {
        rows.positionViewAtIndex(index, ListView.Contain);
        rows.itemAtIndex(index)?.forceActiveFocus(Qt.TabFocusReason);
    }
    function step(by: int) {
        if (!rows.activeFocus) {
            const card = activeFocus ? currentCard + by : 0;
            if (card < count)
                focusCard(Math.max(0, card));
            else if (rows.count > 0)
                focusRow(0);
        } else if (currentRow + by < 0 && count > 0) {
            focusCard(count - 1);
        } else {
            focusRow(Math.max(0, Math.min(currentRow + by, rows.count - 1)));
        }
    }
    /// The tabulator goes through the cards before the rows below them: it follows the order of children, and
    /// the footer is made before any card.
    function putRowsLast() {
        const children = contentItem.children;
        if (!footerItem || children[children.length - 1] === footerItem)
            return;
        const focused = root.Window.activeFocusItem;
        footerItem.parent = null;
        footerItem.parent = contentItem;
        focused?.forceActiveFocus(Qt.OtherFocusReason);
    }
    function follow() {
        for (let item = root.Window.activeFocusItem; item && item !== root; item = item.parent) {
            if (item instanceof HighlightCard)
                currentCard = item.index;
            else if (item instanceof MeetingRow)
                currentRow = item.index;
            else
                continue;
            const top = item.mapToItem(contentItem, 0, 0).y;
            if (top < contentY)
                contentY = top;
            else if (top + item.height > contentY + height)
                contentY = top + item.height - height;
        }
    }

    Connections {
        target: root.agenda.cards

        function onUpdated() {
            root.forceLayout();
            root.putRowsLast();
        }
    }
    Connections {
        target: root.Window.window

        function onActiveFocusItemChanged() {
            root.follow();
        }
    }
}
