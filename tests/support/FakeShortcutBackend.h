#pragma once
#include "platform/ShortcutBackend.h"
#include <QSet>

namespace kestrel {

/// Notes every set, and answers it at once or, while `isHeld`, when answer() is called. Identifiers in
/// `taken` belong to another program.
class FakeShortcutBackend final : public ShortcutBackend
{
public:
    [[nodiscard]] Kind kind() const override { return backend; }
    void bind(const QList<Shortcut> &shortcuts) override
    {
        sets.append(shortcuts);
        if (!isHeld)
            answer();
    }
    void setSuspended(bool suspended) override { isSuspended = suspended; }

    void answer()
    {
        QList<Outcome> outcomes;
        for (const Shortcut &shortcut : sets.last())
            outcomes.append({ shortcut.id, !taken.contains(shortcut.id) });
        Q_EMIT answered(outcomes);
    }
    void press(quint32 id) { Q_EMIT pressed(id); }

    QList<QList<Shortcut>> sets;
    QSet<quint32> taken;
    Kind backend = Kind::X11Grabs;
    bool isHeld = false;
    bool isSuspended = false;
};

} // namespace kestrel
