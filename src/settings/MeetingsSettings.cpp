#include "settings/MeetingsSettings.h"
#include "preferences/Preferences.h"

namespace kestrel {

namespace {

constexpr std::array shownMeetActions {
    HotkeyAction::meetMute,          HotkeyAction::meetVideo,           HotkeyAction::meetShareScreen,
    HotkeyAction::meetHand,          HotkeyAction::meetFocus,           HotkeyAction::meetReactThumbs,
    HotkeyAction::meetReactHeart,    HotkeyAction::meetReactParty,      HotkeyAction::meetReactClap,
    HotkeyAction::meetReactLaugh,    HotkeyAction::meetReactSurprise,   HotkeyAction::meetReactSad,
    HotkeyAction::meetReactThinking, HotkeyAction::meetReactThumbsDown, HotkeyAction::meetReactLove,
    HotkeyAction::meetLeave,
};

// no screen is larger, and the X protocol takes no larger window
constexpr IntegerEntry::Range windowSide { 1, 16384 };

} // namespace

MeetingsSettings::MeetingsSettings(Preferences &preferences, HotkeyDispatcher &dispatcher,
                                   KeyMonitor &monitor, BrowserConnection &connection)
    : m_preferences(preferences)
    , m_joinShortcut(HotkeyAction::join, preferences, dispatcher, monitor, nullptr)
    , m_browser(connection)
    , m_popupWidth(
          windowSide, [&preferences] { return preferences.popupWindowWidth(); },
          [&preferences](qint64 width) { preferences.setPopupWindowWidth(width); })
    , m_popupHeight(
          windowSide, [&preferences] { return preferences.popupWindowHeight(); },
          [&preferences](qint64 height) { preferences.setPopupWindowHeight(height); })
{
    for (const HotkeyAction action : shownMeetActions)
        m_meetShortcuts.append(new ShortcutItem(action, preferences, dispatcher, monitor, this));
    for (IntegerEntry *entry : { &m_popupWidth, &m_popupHeight })
        connect(&preferences, &Preferences::changed, entry, &IntegerEntry::changed);
}

void MeetingsSettings::retranslate()
{
    m_joinShortcut.retranslate();
    for (QObject *item : std::as_const(m_meetShortcuts))
        static_cast<ShortcutItem *>(item)->retranslate();
    m_browser.retranslate();
    Q_EMIT m_popupWidth.changed();
    Q_EMIT m_popupHeight.changed();
}

void MeetingsSettings::resetPopupSize()
{
    m_preferences.setPopupWindowWidth(1300);
    m_preferences.setPopupWindowHeight(800);
    m_popupWidth.discard();
    m_popupHeight.discard();
}

} // namespace kestrel
