#pragma once
#include "settings/BrowserStatus.h"
#include "settings/IntegerEntry.h"
#include "settings/ShortcutItem.h"
#include <QList>

namespace kestrel {

/// The shortcuts, the browser that calls are driven in, and the size of the window that meetings open in.
/// What it is given outlives it.
class MeetingsSettings final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the settings' model makes it")
    Q_PROPERTY(kestrel::ShortcutItem *joinShortcut READ joinShortcut CONSTANT)
    Q_PROPERTY(QList<QObject *> meetShortcuts READ meetShortcuts CONSTANT)
    Q_PROPERTY(kestrel::BrowserStatus *browser READ browser CONSTANT)
    Q_PROPERTY(kestrel::IntegerEntry *popupWidth READ popupWidth CONSTANT)
    Q_PROPERTY(kestrel::IntegerEntry *popupHeight READ popupHeight CONSTANT)
public:
    MeetingsSettings(Preferences &preferences, HotkeyDispatcher &dispatcher, KeyMonitor &monitor,
                     BrowserConnection &connection);

    void retranslate();

    [[nodiscard]] ShortcutItem *joinShortcut() { return &m_joinShortcut; }
    /// Of the call's actions, each a ShortcutItem, in the order in which they are shown.
    [[nodiscard]] const QList<QObject *> &meetShortcuts() const { return m_meetShortcuts; }
    [[nodiscard]] BrowserStatus *browser() { return &m_browser; }
    [[nodiscard]] IntegerEntry *popupWidth() { return &m_popupWidth; }
    [[nodiscard]] IntegerEntry *popupHeight() { return &m_popupHeight; }

    /// 1300 by 800.
    Q_INVOKABLE void resetPopupSize();

private:
    Preferences &m_preferences;
    ShortcutItem m_joinShortcut;
    QList<QObject *> m_meetShortcuts;
    BrowserStatus m_browser;
    IntegerEntry m_popupWidth;
    IntegerEntry m_popupHeight;
};

} // namespace kestrel
