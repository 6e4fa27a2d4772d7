#pragma once
#include "platform/ShortcutBackend.h"

namespace kestrel {

/// Where no global shortcut can be had: all of them are refused.
class NullShortcuts final : public ShortcutBackend
{
public:
    [[nodiscard]] Kind kind() const override { return Kind::None; }
    void bind(const QList<Shortcut> &shortcuts) override
    {
        QList<Outcome> outcomes;
        for (const Shortcut &shortcut : shortcuts)
            outcomes.append({ shortcut.id, false });
        Q_EMIT answered(outcomes);
    }
    void setSuspended(bool /*suspended*/) override { }
};

} // namespace kestrel
