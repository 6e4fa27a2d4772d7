#pragma once
#include "platform/Appearance.h"

namespace kestrel {

/// A desktop whose wishes a test sets: change the fields, then emit changed().
class FakeAppearance final : public Appearance
{
    Q_OBJECT
public:
    [[nodiscard]] bool isDark() const override { return dark; }
    [[nodiscard]] std::optional<QColor> accentColor() const override { return accent; }
    [[nodiscard]] bool reducesTransparency() const override { return lessTransparency; }
    [[nodiscard]] bool reducesMotion() const override { return lessMotion; }
    [[nodiscard]] bool isComposited() const override { return composited; }

    bool dark = false;
    std::optional<QColor> accent;
    bool lessTransparency = false;
    bool lessMotion = false;
    bool composited = false;
};

} // namespace kestrel
