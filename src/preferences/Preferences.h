#pragma once
#include "hotkeys/HotkeyAction.h"
#include "platform/PreferenceStore.h"
#include <QLatin1StringView>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <array>

namespace kestrel {

class LoginItem;

// NOLINTBEGIN(bugprone-macro-parentheses): a type and names, not expressions
// One stored setting: a property, its getter and its setter. The last argument is its value in a fresh store.
#define KESTREL_STORED(type, name, setName, key, fallback)                                                   \
    Q_PROPERTY(type name READ name WRITE setName NOTIFY changed)                                             \
public:                                                                                                      \
    [[nodiscard]] type name() const                                                                          \
    {                                                                                                        \
        return read(QLatin1StringView(key), type(fallback));                                                 \
    }                                                                                                        \
    void setName(type value)                                                                                 \
    {                                                                                                        \
        write(QLatin1StringView(key), value);                                                                \
    }
#define KESTREL_STORED_INTEGER(name, setName, fallback) KESTREL_STORED(qint64, name, setName, #name, fallback)
#define KESTREL_STORED_BOOLEAN(name, setName, fallback) KESTREL_STORED(bool, name, setName, #name, fallback)
#define KESTREL_STORED_STRING(name, setName, fallback)                                                       \
    KESTREL_STORED(QString, name, setName, #name, QLatin1StringView(fallback))
#define KESTREL_STORED_HOTKEY(name, setName, key) KESTREL_STORED(QString, name, setName, key, QString())
// NOLINTEND(bugprone-macro-parentheses)

/// Every user setting: read from the store at each call, written to it at once, not clamped. What is absent
/// from the store, or there in another type, reads as its default and is not written. Owned by app/; the
/// store outlives it. Main thread only.
class Preferences final : public QObject
{
    Q_OBJECT

    KESTREL_STORED_INTEGER(leadTimeMinutes, setLeadTimeMinutes, 5)
    KESTREL_STORED_INTEGER(autoDismissSeconds, setAutoDismissSeconds, 0)
    KESTREL_STORED_STRING(screenPositionRaw, setScreenPositionRaw, "topRight")
    KESTREL_STORED_STRING(selectedCalendarIDsByAccountRaw, setSelectedCalendarIDsByAccountRaw, "{}")
    KESTREL_STORED_BOOLEAN(launchAtLogin, setLaunchAtLogin, true)
    KESTREL_STORED_BOOLEAN(stackSimultaneousAlerts, setStackSimultaneousAlerts, true)
    KESTREL_STORED_INTEGER(highlightToleranceSeconds, setHighlightToleranceSeconds, 0)
    KESTREL_STORED_BOOLEAN(reduceTransparency, setReduceTransparency, false)
    KESTREL_STORED_BOOLEAN(playSoundOnAlert, setPlaySoundOnAlert, true)
    KESTREL_STORED_STRING(alertSoundRaw, setAlertSoundRaw, "Glass")
    KESTREL_STORED_BOOLEAN(secondaryAlertOneMinute, setSecondaryAlertOneMinute, true)
    KESTREL_STORED_STRING(languageOverrideRaw, setLanguageOverrideRaw, "system")
    KESTREL_STORED_BOOLEAN(clickOutsideToDismiss, setClickOutsideToDismiss, false)
    KESTREL_STORED_BOOLEAN(enableJoinShortcut, setEnableJoinShortcut, false)
    KESTREL_STORED_BOOLEAN(enableMeetControls, setEnableMeetControls, false)
    KESTREL_STORED_BOOLEAN(showMeetMicInMenuBar, setShowMeetMicInMenuBar, true)
    KESTREL_STORED_BOOLEAN(enableStreamDeckBridge, setEnableStreamDeckBridge, false)
    KESTREL_STORED_HOTKEY(hotkeyJoinRaw, setHotkeyJoinRaw, "hotkey.join")
    KESTREL_STORED_HOTKEY(hotkeyMeetMuteRaw, setHotkeyMeetMuteRaw, "hotkey.meet.mute")
    KESTREL_STORED_HOTKEY(hotkeyMeetVideoRaw, setHotkeyMeetVideoRaw, "hotkey.meet.video")
    KESTREL_STORED_HOTKEY(hotkeyMeetHandRaw, setHotkeyMeetHandRaw, "hotkey.meet.hand")
    KESTREL_STORED_HOTKEY(hotkeyMeetFocusRaw, setHotkeyMeetFocusRaw, "hotkey.meet.focus")
    KESTREL_STORED_HOTKEY(hotkeyMeetReactThumbsRaw, setHotkeyMeetReactThumbsRaw, "hotkey.meet.react.thumbs")
    KESTREL_STORED_HOTKEY(hotkeyMeetReactHeartRaw, setHotkeyMeetReactHeartRaw, "hotkey.meet.react.heart")
    KESTREL_STORED_HOTKEY(hotkeyMeetReactPartyRaw, setHotkeyMeetReactPartyRaw, "hotkey.meet.react.party")
    KESTREL_STORED_HOTKEY(hotkeyMeetReactClapRaw, setHotkeyMeetReactClapRaw, "hotkey.meet.react.clap")
    KESTREL_STORED_HOTKEY(hotkeyMeetReactLaughRaw, setHotkeyMeetReactLaughRaw, "hotkey.meet.react.laugh")
    KESTREL_STORED_HOTKEY(hotkeyMeetReactSurpriseRaw, setHotkeyMeetReactSurpriseRaw,
                          "hotkey.meet.react.surprise")
    KESTREL_STORED_HOTKEY(hotkeyMeetReactSadRaw, setHotkeyMeetReactSadRaw, "hotkey.meet.react.sad")
    KESTREL_STORED_HOTKEY(hotkeyMeetReactThinkingRaw, setHotkeyMeetReactThinkingRaw,
                          "hotkey.meet.react.thinking")
    KESTREL_STORED_HOTKEY(hotkeyMeetReactThumbsDownRaw, setHotkeyMeetReactThumbsDownRaw,
                          "hotkey.meet.react.thumbsdown")
    KESTREL_STORED_HOTKEY(hotkeyMeetReactLoveRaw, setHotkeyMeetReactLoveRaw, "hotkey.meet.react.love")
    KESTREL_STORED_HOTKEY(hotkeyMeetShareRaw, setHotkeyMeetShareRaw, "hotkey.meet.share")
    KESTREL_STORED_HOTKEY(hotkeyMeetLeaveRaw, setHotkeyMeetLeaveRaw, "hotkey.meet.leave")
    KESTREL_STORED_INTEGER(popupWindowWidth, setPopupWindowWidth, 1300)
    KESTREL_STORED_INTEGER(popupWindowHeight, setPopupWindowHeight, 800)

public:
    /// Where alert cards appear.
    enum class ScreenPosition { TopLeft, TopCenter, TopRight, BottomLeft, BottomCenter, BottomRight };
    Q_ENUM(ScreenPosition)
    enum class LanguageCode { System, En, Es };
    Q_ENUM(LanguageCode)
    enum class AlertSound { Glass, Ping, Hero, Submarine, Tink, Pop, Blow, Bottle, Funk, Purr };
    Q_ENUM(AlertSound)

    /// All cases, in the order in which the settings offer them.
    static const std::array<ScreenPosition, 6> screenPositions;
    static const std::array<LanguageCode, 3> languageCodes;
    static const std::array<AlertSound, 10> alertSounds;

    /// How a case is stored. A sound's is also its name for the sound player.
    [[nodiscard]] static QLatin1StringView rawValue(ScreenPosition position);
    [[nodiscard]] static QLatin1StringView rawValue(LanguageCode language);
    [[nodiscard]] static QLatin1StringView rawValue(AlertSound sound);

    /// The store's key for the list of languages that the translations are chosen by; absent: the system's.
    static constexpr QLatin1StringView languagesKey { "AppleLanguages" };

    explicit Preferences(PreferenceStore &store, QObject *parent = nullptr);

    /// The file that settings could not be stored in lately; empty once one could be again.
    [[nodiscard]] QString unsavedIn() const { return m_unsavedIn; }

    /// The typed views: text that names no case reads as TopRight, Glass and System.
    [[nodiscard]] ScreenPosition screenPosition() const;
    void setScreenPosition(ScreenPosition position);
    [[nodiscard]] AlertSound alertSound() const;
    void setAlertSound(AlertSound sound);
    [[nodiscard]] LanguageCode languageOverride() const;
    /// Stores the override and brings the language list in line before changed() is emitted.
    void setLanguageOverride(LanguageCode language);

    /// Brings the store's list of languages in line with the override.
    void applyLanguageOverride();

    /// Calendar identifiers by account identifier; empty when the stored text is not such a map.
    [[nodiscard]] QMap<QString, QStringList> selectedCalendarIDsByAccount() const;
    [[nodiscard]] QStringList selectedCalendarIDs(const QString &accountID) const;
    /// Replaces the account's entry, or removes it when `ids` is empty.
    void setSelectedCalendarIDs(const QStringList &ids, const QString &accountID);
    /// Drops the entries of all other accounts.
    void pruneCalendarSelections(const QSet<QString> &accountIDs);

    /// The stored shortcut, or the action's default where none is stored or it cannot be read.
    [[nodiscard]] Hotkey hotkey(HotkeyAction action) const;
    void setHotkey(const Hotkey &hotkey, HotkeyAction action);
    /// Back to the action's default.
    void resetHotkey(HotkeyAction action);
    [[nodiscard]] QString rawHotkey(HotkeyAction action) const;
    void setRawHotkey(const QString &raw, HotkeyAction action);

Q_SIGNALS:
    /// A value is about to be stored; also when it is the one that is there already. Not emitted for what
    /// another process changed, since nothing can be told beforehand there.
    void willChange();
    /// A value was stored (or could not be: it reads as before then), or another process changed some.
    void changed();
    void unsavedInChanged();

private:
    void setUnsavedIn(const QString &path);
    [[nodiscard]] qint64 read(QLatin1StringView key, qint64 fallback) const;
    [[nodiscard]] bool read(QLatin1StringView key, bool fallback) const;
    [[nodiscard]] QString read(QLatin1StringView key, const QString &fallback) const;
    void write(QLatin1StringView key, qint64 value);
    void write(QLatin1StringView key, bool value);
    void write(QLatin1StringView key, const QString &value);
    void storeSelections(const QMap<QString, QStringList> &selections);

    PreferenceStore &m_store;
    QString m_unsavedIn;
};

#undef KESTREL_STORED_HOTKEY
#undef KESTREL_STORED_STRING
#undef KESTREL_STORED_BOOLEAN
#undef KESTREL_STORED_INTEGER
#undef KESTREL_STORED

/// Registers Kestrel to start with the session, or takes that back. A failure is logged; the stored
/// preference stays.
void setLaunchAtLogin(bool enabled, LoginItem &loginItem);

} // namespace kestrel
