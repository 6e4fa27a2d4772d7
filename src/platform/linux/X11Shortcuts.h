#pragma once
#include "platform/ShortcutBackend.h"
#include "platform/linux/X11.h"
#include <QAbstractNativeEventFilter>
#include <QHash>
#include <QSet>
#include <optional>
#include <utility>

namespace kestrel {

/// Grabs keys on the X server's root window, whatever locks are on. Shortcuts are positions: another layout
/// moves none of them. Lives where x11::connection() is not null, and not longer. Main thread only.
class X11Shortcuts final : public ShortcutBackend, public QAbstractNativeEventFilter
{
    Q_OBJECT
public:
    explicit X11Shortcuts(QObject *parent = nullptr);
    ~X11Shortcuts() override;
    X11Shortcuts(const X11Shortcuts &) = delete;
    X11Shortcuts &operator=(const X11Shortcuts &) = delete;

    [[nodiscard]] Kind kind() const override { return Kind::X11Grabs; }
    void bind(const QList<Shortcut> &shortcuts) override;
    void setSuspended(bool suspended) override;

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    /// What a modifier is on this keyboard, as a bit of X.
    struct ModifierMasks
    {
        quint16 option = 0;
        quint16 command = 0;
        quint16 numLock = 0;

        friend bool operator==(const ModifierMasks &, const ModifierMasks &) = default;
    };
    using Chord = std::pair<quint8, quint16>; ///< keycode, and modifiers without locks

    [[nodiscard]] static ModifierMasks askModifierMasks();
    [[nodiscard]] std::optional<Chord> chordOf(const Shortcut &shortcut) const;
    [[nodiscard]] QList<quint16> withLocks(quint16 modifiers) const;

    /// Grabs what is wanted and not held, lets go of what is held and not wanted.
    void grab();
    void tryToGrab(const QList<Chord> &chords);
    void letGo(const QList<Chord> &chords);
    /// Answers where an answer is owed, or another one than the last is true.
    void tellOutcomes();
    void learnModifiersLater();
    void learnModifiers();
    [[nodiscard]] bool takePress(const xcb_key_press_event_t &press);

    quint8 m_xkbEvents = 0; ///< the number of the keyboard extension's events
    ModifierMasks m_masks;
    QList<Shortcut> m_shortcuts;
    QHash<Chord, quint32> m_wanted; ///< the identifier of each
    QSet<Chord> m_held;
    QList<Outcome> m_told;
    QSet<quint8> m_keysDown; ///< of the grabbed ones
    std::pair<quint8, xcb_timestamp_t> m_lastRelease;
    bool m_isSuspended = false;
    bool m_isAnswerOwed = false;
    bool m_isLearningPlanned = false;
};

} // namespace kestrel
