#pragma once
#include <QList>
#include <QObject>
#include <QString>

namespace kestrel {

/// Global shortcuts as the desktop takes them. Key codes stand for positions of the US keyboard, modifiers
/// are the bits of Modifier (platform/Modifier.h).
class ShortcutBackend : public QObject
{
    Q_OBJECT
public:
    /// By which way the desktop takes them.
    enum class Kind { None, X11Grabs, Portal };
    struct Shortcut
    {
        quint32 id = 0;
        QString name; ///< stable, for desktops that remember shortcuts by name ("meetMute")
        QString description; ///< for the desktop's own settings
        quint32 keyCode = 0;
        quint32 modifiers = 0;

        friend bool operator==(const Shortcut &, const Shortcut &) = default;
    };
    struct Outcome
    {
        quint32 id = 0;
        bool isBound = false; ///< false: another program has it, or the desktop does not take it

        friend bool operator==(const Outcome &, const Outcome &) = default;
    };

    using QObject::QObject;

    [[nodiscard]] virtual Kind kind() const = 0;

    /// Replaces everything that was bound before. Answered by `answered`, in this turn or a later one; a
    /// newer set takes the place of one that is still unanswered. Identifiers are unique.
    virtual void bind(const QList<Shortcut> &shortcuts) = 0;
    /// While a shortcut is being recorded: no grab is held and no press reported. Bound ones come back by
    /// themselves, without an answer.
    virtual void setSuspended(bool suspended) = 0;

Q_SIGNALS:
    /// One outcome a shortcut of the last set. Comes again, unasked, when the desktop changes its mind.
    void answered(const QList<kestrel::ShortcutBackend::Outcome> &outcomes);
    /// Once a press: a key that is held down does not repeat.
    void pressed(quint32 id);
};

} // namespace kestrel
